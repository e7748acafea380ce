// The page on which a user may say why the program is being removed.
#pragma once

#include "desktop/dialogs/wizard.h"

class LUninstallCommentPage : public LWizardPage {
public:
    // keepsSilent: the page opens with the answer that sends nothing.
    explicit LUninstallCommentPage(bool keepsSilent) : keepsSilent_(keepsSilent) {}

    static OpenGenData GenData();

private:
    void InitDialog() override;
    void Command(int command) override;
    void EnableControls() override;
    // Sends the comment, which never takes longer than the report's own limits. Always true:
    // whatever becomes of the report, the program is removed.
    bool CmOk() override;
    void ShowReason(int item);

    const bool keepsSilent_;
};
