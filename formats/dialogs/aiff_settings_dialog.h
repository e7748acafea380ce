// Rate and channels of AIFF files, kept in the user settings.
#pragma once

#include "gui/windows/dialog.h"

class LAIFFSettingsDlg final : public LDialog {
public:
    bool Run(GtkWidget* parent);  // modal; true: OK, the settings are stored
    // Shows nothing and answers false, which callers take for a cancel.
    bool Open(GtkWidget* parent);

    void InitDialog() override;
    bool CmOk() override;
    void Command(int command) override;
};

void DlgGenAIFFEncode(LDialogGenContext& context);
