// Removing in a window.
#pragma once

#include <string>

#include "desktop/uninstall_dialog.h"

// Tells what will go, asks what shall go with it, and offers to say why. True when the user wants
// to go on; the choice is then filled in, and nothing has been removed yet. GUI thread, GDK lock
// held.
bool RunUninstallWizard(RemovalChoice& choice);

// The talk of a removal that this wizard has prepared.
class LUninstallWindowTalk : public LUninstallTalk {
public:
    explicit LUninstallWindowTalk(RemovalChoice choice) : choice_(choice) {}
    RemovalChoice AskChoice() override { return choice_; }
    void TellTrouble(const std::string& trouble) override;

private:
    RemovalChoice choice_;
};
