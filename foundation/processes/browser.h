// Opening web pages in the desktop's browser.
#pragma once

#include <string>

// The shell command that opens the address: "kfmclient exec" in a KDE session, else "gnome-open";
// "xdg-open" where that program is not installed. Empty when the command would be longer than 259
// characters.
std::string BrowserCommand(const std::string& address);

// False: the program that the command starts is not installed.
bool HasBrowser();

// Starts the browser on the address and does not wait for it; false when the command is too long
// or no shell could be run. Any thread.
bool OpenInBrowser(const std::string& address);
