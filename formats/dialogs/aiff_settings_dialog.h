// Rate and channels of AIFF files, kept in the user settings.
#pragma once

#include "gui/dialog.h"

class LAIFFSettingsDlg final : public LDialog {
public:
    // Shows nothing and answers false, which callers take for a cancel: nothing offers AIFF files
    // to the user. LDialog::Open with DlgGenAIFFEncode is the dialog itself.
    bool Open(GtkWidget* parent);

    void InitDialog() override;
    bool CmOk() override;
    void Command(int command) override;
};

void DlgGenAIFFEncode(LDialogGenContext& context);
