// Taking the program away, as its user is asked and told about it.
#pragma once

#include <string>

#include "desktop/installation.h"

// A terminal or a window.
class LUninstallTalk {
public:
    virtual ~LUninstallTalk() = default;
    virtual RemovalChoice AskChoice() = 0;
    virtual void TellTrouble(const std::string& trouble) = 0;
};

class UninstallDialog {
public:
    // Asks, removes, and tells what went wrong; false when it did.
    static bool Uninstall(LUninstallTalk& talk);
    // What is said after it: where the program can be had again, without an end mark.
    static std::string CompleteText();
};
