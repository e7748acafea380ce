// Menus made from tables, for menu bars and pop-up menus alike.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>

#include "gui/controls/control_host.h"
#include "gui/menus/key_map.h"
#include "gui/menus/menu_item.h"

// Where the items of a menu belong; all are borrowed and must outlive the items.
struct LMenuOwner {
    LControlHost& host;          // gets the commands
    LControlRegistry& registry;  // finds the items by their commands
    LSignalOwner& signals;
    GtkAccelGroup* accelerators = nullptr;  // null: keys are not shown
    LKeyMap keys;
};

// Appends rows to the menu from `index` on, up to the end row or the end of the table, and leaves
// `index` behind the end row.
void AddMenuRows(const LMenuOwner& owner, GtkWidget* menu, LMenuItems items, std::size_t& index);

// An item that the user chooses in an open menu sends its command to the host: by key, by a press,
// or by letting the pointer go on it after a press elsewhere. Activating it by other means does
// not. An item is registered under its command.
void ConnectMenuItem(const LMenuOwner& owner, GtkWidget* item, int command);

// An item with a sub-menu of its own, appended to the shell.
GtkWidget* AddSubMenu(GtkWidget* shell, const char* title);

// GObject data of a menu that comes up at the pointer: a GdkPoint of the desktop.
constexpr const char* kMenuCameUp = "menu-came-up";
