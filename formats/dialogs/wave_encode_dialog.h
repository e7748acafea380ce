// "Wave Encoder Options": fills a wave format record from a preset or custom choices.
#pragma once

#include "formats/wave_format.h"
#include "gui/windows/dialog.h"

// Shown by LWaveFile::WaveFormatSelectDialog. The preset is remembered in the user settings. GUI
// thread, GDK lock held.
class LWaveEncodeDlg final : public LDialog {
public:
    explicit LWaveEncodeDlg(LWaveFileFormat& format) : format_(format) {  // borrowed
        SetHelpPage("wave");
    }

    bool Run(GtkWidget* parent);  // modal; true: OK, the record is filled

    void InitDialog() override;
    bool CmOk() override;
    void EnableControls() override;
    void Command(int command) override;

private:
    bool IsCustom() const;
    void ShowCustomFormat();
    void SetListsToAuto();
    void TakeCustomFormat();

    LWaveFileFormat& format_;
};

void DlgGenLWaveEncodeDlg(LDialogGenContext& context);
