// Where the main window offers its commands: menu bar, tool bar with its drop-down menus, command
// bar, and the menu of the tray icon.
#pragma once

#include <string>
#include <vector>

#include "gui/main_window.h"
#include "gui/popup_menu.h"
#include "gui/widgets/explorer_bar.h"

// What commands can act upon at the moment.
struct CommandState {
    bool hasText = false;       // in the text box
    bool hasSelection = false;  // in any program
    bool canUndo = false;
    bool canRedo = false;
    bool operator==(const CommandState&) const = default;
};

// The keys of the commands, for the window's key map.
LKeyMap MainKeyMap();

// GUI thread.
class CommandPlaces {
public:
    // The window gets the commands; it outlives this object.
    explicit CommandPlaces(LMainWindow& window);

    void CreateMenus();          // menu bar and tool bar; the window is open, and once
    GtkWidget* NewCommandBar();  // floating; once
    void Enable(CommandState state);
    void CheckCommandBar(bool shown);
    // In the first menu; numbered from kRecentFile on.
    void ListRecentFiles(const std::vector<std::string>& paths);
    void DropDown(int command);  // under the arrow that sent this command
    void PopupTrayMenu();        // at the pointer
    // Names the program that was in front before this window, in the labels that speak of it.
    void NameActiveWindow(const char* program);

private:
    LMainWindow& window_;
    LExplorerBar bar_;
    LWindow::PopupMenu dropDown_;
    LWindow::PopupMenu trayMenu_;
    CommandState state_;
};
