// Removing in a window.
#pragma once

#include <string>

#include "desktop/dialogs/wizard.h"
#include "desktop/uninstall_dialog.h"

// Tells what will go, asks what shall go with it, and offers to say why. True when the user wants
// to go on; the choice is then filled in, and nothing has been removed yet. GUI thread, GDK lock
// held.
bool RunUninstallWizard(LWizard& wizard, RemovalChoice& choice);

// The talk of a removal that this wizard has prepared, before its window, which is borrowed.
class LUninstallWindowTalk : public LUninstallTalk {
public:
    LUninstallWindowTalk(RemovalChoice choice, GtkWidget* window)
        : choice_(choice), window_(window) {}
    RemovalChoice AskChoice() override { return choice_; }
    void TellTrouble(const std::string& trouble) override;

private:
    RemovalChoice choice_;
    GtkWidget* window_;
};
