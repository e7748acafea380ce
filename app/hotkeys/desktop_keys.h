// What stands in for system-wide hotkeys where the session lets no program have them.
#pragma once

#include <string>

bool IsWaylandSession();

// Under Wayland a key that is pressed in another program comes to this one only where the desktop
// gives it (ShortcutPortal). The desktop's own keyboard settings can start a command by it.
bool HotKeysReachEveryProgram();

// Those commands, one a line, with a word about each.
std::string DesktopKeyHints();
void CopyDesktopKeyCommands();  // onto the clipboard, without the words; GUI thread
