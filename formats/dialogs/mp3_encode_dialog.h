// MP3 encoder options: bit rates, quality and channels of MP3 files.
#pragma once

#include "formats/mp3_settings.h"
#include "gui/windows/dialog.h"

// Nothing in the program opens it: MP3 settings are changed in the settings store.
class LMP3EncodeDlg final : public LDialog {
public:
    // Borrowed. OK fills the settings and stores all eight keys.
    explicit LMP3EncodeDlg(LMp3EncodeSettings& settings) : settings_(settings) {}

    bool Run(GtkWidget* parent);  // modal; true: OK

    void InitDialog() override;
    bool CmOk() override;
    void EnableControls() override;
    void Command(int command) override;

private:
    void Show(const LMp3EncodeSettings& settings);
    bool CheckVariableRates();

    LMp3EncodeSettings& settings_;
};

void DlgGenMP3Encode(LDialogGenContext& context);
