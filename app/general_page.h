// The page "General" of the options: start on login, and what format speech is saved in.
#pragma once

#include "gui/property_sheet.h"

class GeneralDlgImp final : public LPropertyPage {
public:
    GeneralDlgImp() { SetHelpPage("general"); }

    void InitDialog() override;
    bool CmOk() override;
    void EnableControls() override;
    void Command(int command) override;

private:
    void ShowFormatSettings();
};

void DlgGenGeneralDlg(LDialogGenContext& context);
