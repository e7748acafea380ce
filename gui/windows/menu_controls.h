// The menu bar of a window, its items found by their commands.
#pragma once

#include <span>
#include <vector>

#include "gui/controls/control_host.h"
#include "gui/menus/key_map.h"
#include "gui/menus/menu_item.h"

class LMenuControls : public virtual LControlHost {
public:
    // Appends the Help menu to the menu bar, and to its first menu the items that close the window
    // and end the program.
    void AddStandardMenuItems(bool withTray);

    // Also registers the item under the command, which a press of the item sends; in a menu made
    // from a table Enter, space and the item's letter do so too.
    void SetMenuCommandHandler(GtkWidget* item, int command);
    void EnableMenuItem(int command, bool on);
    void EnableMenuItems(std::span<const int> commands, bool on);
    void CheckMenuItem(int command, bool on);  // check items only; sends nothing
    // The position of the sub-menu with this title in the menu, -1 for none.
    static int CheckSubMenu(GtkWidget* menu, const char* text);
    // The item of the menu with this command, and its position; null and -1 for none.
    static GtkWidget* _GetMenuItem(GtkWidget* menu, int command, int& position);

    // Sends the command when a menu of the bar opens, so that the window can enable and check its
    // items.
    void HandleInitMenu(int command);
    // Runs the command of the sensitive item whose accelerator the key is; false for none.
    bool CheckMenuAccelerators(LKeyCode key);
    int GetMenuBarHeight() const { return MenuBarSize().height; }  // pixels; 0 without a menu bar
    int GetMenuBarWidth() const { return MenuBarSize().width; }    // that shows all its titles

protected:
    void ForgetMenus() { menuKeys_.clear(); }

private:
    GtkRequisition MenuBarSize() const;
    friend class LMenuContainer;
    friend void LMenuAdd(class LWindow& window, GtkWidget* menu, LMenuItems items,
                         std::size_t& index, LKeyMap keys);
    void AddRows(GtkWidget* menu, LMenuItems items, std::size_t& index, LKeyMap keys);
    GtkWidget* MenuBar() const;

    std::vector<LKeyToCommandMap> menuKeys_;  // of the items
};

// Builds menu bars.
class LMenuContainer {
public:
    // Puts a menu bar at the top of the open window's content; each top-level title of the table
    // opens a menu. A command of the key map shows its key. The tables are copied.
    static void SetMenu(LWindow& window, LMenuItems items, LKeyMap keys);
};

// Appends rows to a menu of the window's bar from `index` on, up to the end row or the end of the
// table, and leaves `index` behind it.
void LMenuAdd(LWindow& window, GtkWidget* menu, LMenuItems items, std::size_t& index, LKeyMap keys);
