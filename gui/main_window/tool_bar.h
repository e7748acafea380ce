// The tool bar of a window: buttons that send commands, some with a drop-down menu.
#pragma once

#include <gtk/gtk.h>

#include <span>

#include "gui/controls/control_registry.h"
#include "gui/signal_owner.h"

class LWindow;

class LToolBar {
public:
    struct ToolBarItem {
        enum Kind {
            kButton,
            kToggle,     // its look is set by SetToolBarItemCheck and by the user
            kDropDown,   // a button and a small arrow button, see HandleToolBarItemDropdown
            kDelete,     // a button with the desktop's picture for deleting
            kSeparator,  // the other fields do not count
            kExpandingSeparator,  // pushes what follows to the right
        };
        int command;
        int image;  // number of its picture
        const char* label;
        const char* tooltip;
        Kind kind;
    };
    static constexpr int kNoPlaceholder = -1;

    // Builds the tool bar of the open window, which gets the commands. In the place of a control
    // of the window the pictures stand alone, under that control's number; else they have their
    // labels below them, at the top of the window's content. Pictures are at most iconSize pixels.
    // The table is copied.
    void _SetToolBar(LWindow& window, std::span<const ToolBarItem> items, int iconSize,
                     int placeholderId = kNoPlaceholder);
    void SetToolBar(LWindow& window, std::span<const ToolBarItem> items) {
        _SetToolBar(window, items, kIconSize);
    }

    // By command; null when unknown. Borrowed: pop-up menus are placed under it.
    GtkWidget* GetToolItemFromID(int command) const { return items_.Find(command); }
    void SetToolBarItemText(int command, const char* text);
    void SetToolBarItemCheck(int command, bool checked);  // sends nothing
    void EnableToolBarItem(int command, bool enabled);
    void HideToolBarItem(int command, bool hidden);
    // What the arrow beside a drop-down item sends, for the window to pop up its menu.
    void HandleToolBarItemDropdown(int command, int dropDownCommand);
    // At the right end: the maker's other programs, and help.
    void AddToolboxAndHelp();
    void ShowToolBar(bool shown);
    int GetToolBarHeight() const;  // pixels; 0 without one at the top of the window

protected:
    LToolBar() = default;
    ~LToolBar();
    LToolBar(const LToolBar&) = delete;
    LToolBar& operator=(const LToolBar&) = delete;

private:
    static constexpr int kIconSize = 24;
    void Add(const ToolBarItem& item, GtkWidget* image);
    void AddSeparator(bool expanding);
    void AddArrow(GtkToolItem* item, const ToolBarItem& row);
    GtkWidget* ArrowOf(int command) const;
    void Place(GtkWidget* placeholder, int placeholderId);

    LWindow* window_ = nullptr;  // borrowed; valid while the bar lives
    GtkWidget* bar_ = nullptr;   // owned by its window; cleared when destroyed
    bool atTop_ = false;
    LControlRegistry items_;
    LSignalOwner signals_;
};
