// Where the main window offers its commands: menu bar, tool bar with its drop-down menus, command
// bar, and the menu of the tray icon.
#pragma once

#include <string>
#include <vector>

#include "app/commands/command_set.h"
#include "gui/main_window/main_window.h"
#include "gui/widgets/explorer_bar.h"
#include "gui/windows/popup_menu.h"

// GUI thread.
class CommandPlaces {
public:
    // The window gets the commands. Both outlive this object.
    CommandPlaces(LMainWindow& window, CommandSet& commands);

    void AddCommands();          // of the arrows
    void CreateMenus();          // menu bar and tool bar; the window is open, and once
    GtkWidget* NewCommandBar();  // floating; once
    // In the first menu; numbered from kRecentFile on.
    void ListRecentFiles(const std::vector<std::string>& labels);
    void AddToTextMenu(GtkWidget* menu);  // that of the text box, before it is shown
    void EvNotifyIconContextMenu();       // the tray's menu, at the pointer
    // Names the program that was in front before this window, in the labels that speak of it.
    void EvActiveWindowChanged(const char* program);

private:
    void CheckActiveWindowChange();
    void DropDown(int command);  // under the arrow that sent this command
    void CreateToolBar();
    void SetPopup(LWindow::PopupMenu& menu, LMenuItems items);

    LMainWindow& window_;
    CommandSet& commands_;
    LExplorerBar bar_;
    LWindow::PopupMenu dropDown_;
    LWindow::PopupMenu trayMenu_;
};
