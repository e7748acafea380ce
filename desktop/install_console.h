// Installing and removing from a terminal, for machines without a display.
#pragma once

// Both print what they do and what went wrong; false when it did.
bool RunInstallConsole();

class UninstallDialog {
public:
    // Takes the program away. Where somebody sits at the terminal, they are asked whether the
    // machine-wide settings shall go too; otherwise these stay.
    static bool Uninstall();
};

// The same with a last word about where to get the program again.
void RunUninstallConsole();
