// "Au Encoder Options": encoding, rate and channels of AU files, kept in the user settings.
#pragma once

#include "gui/windows/dialog.h"

class LAuSettingsDlg final : public LDialog {
public:
    LAuSettingsDlg() { SetHelpPage("wave"); }

    bool Run(GtkWidget* parent);  // modal; true: OK, the settings are stored

    void InitDialog() override;
    bool CmOk() override;
    void Command(int command) override;
};

void DlgGenAuEncode(LDialogGenContext& context);
