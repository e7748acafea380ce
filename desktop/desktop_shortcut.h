// The program's icon on a user's desktop.
#pragma once

// Copies the installed menu entry to the present user's desktop folder. Nothing where there is no
// such folder, no such entry, or already one on the desktop.
void CreateDesktopShortcut();

// Takes the program's own entries from the desktops of all accounts.
void RemoveDesktopShortcuts();
