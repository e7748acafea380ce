// Installing and removing from a terminal, for machines without a display.
#pragma once

// Both print what they do and what went wrong; false when it did.
bool RunInstallConsole();
// Asks what shall go with the program where somebody sits at the terminal; otherwise only the
// program goes. With a last word about where to get it again.
bool RunUninstallConsole();
