// Menus that pop up at the pointer or under a button.
#pragma once

#include "gui/menus/menu_builder.h"
#include "gui/windows/window.h"

// Sends its commands to the window, which must outlive it; its items are its own and are not found
// by the window's EnableMenuItem.
class LWindow::PopupMenu {
public:
    explicit PopupMenu(LWindow& window) : window_(window) {}
    PopupMenu(const PopupMenu&) = delete;
    PopupMenu& operator=(const PopupMenu&) = delete;
    ~PopupMenu() { Clear(); }

    void SetMenu(LMenuItems items);  // in place of an earlier menu
    void EnableMenuItem(int command, bool on);
    void CheckMenuItem(int command, bool on);

    void Popup();                        // at the pointer
    void PopupUnder(GtkWidget* button);  // below it, left edges aligned
    GtkWidget* Widget() const { return menu_.Get(); }

private:
    friend void LPopupMenuAdd(LWindow::PopupMenu& menu, LMenuItems items, std::size_t& index);
    void Clear();

    LWindow& window_;
    GObjectRef<GtkWidget> menu_;
    LControlRegistry registry_;
    LSignalOwner signals_;
};

// Appends rows from `index` on, up to the end row or the end of the table, and leaves `index`
// behind it.
void LPopupMenuAdd(LWindow::PopupMenu& menu, LMenuItems items, std::size_t& index);
