#include "desktop/uninstall_dialog.h"

#include "foundation/settings/hosts.h"

bool UninstallDialog::Uninstall(LUninstallTalk& talk) {
    const std::string trouble = RemoveInstallation(talk.AskChoice());
    if (!trouble.empty())
        talk.TellTrouble(trouble);
    return trouble.empty();
}

std::string UninstallDialog::CompleteText() {
    return "Uninstall is complete. If you need to reinstall this software again you can download "
           "it from " +
           WebAddress("");
}
