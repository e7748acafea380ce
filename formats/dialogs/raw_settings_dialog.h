// Settings of headerless files: encoding, rate, channels.
#pragma once

#include "formats/raw_file.h"
#include "gui/windows/dialog.h"

class LRawSettingsDialog final : public LDialog {
public:
    // Both are borrowed. OK fills the settings and stores them in the user settings section.
    LRawSettingsDialog(LRawSettings& settings, const char* section)
        : settings_(settings), section_(section) {}

    bool Run(GtkWidget* parent);  // modal; true: OK
    // Shows nothing and answers false, which callers take for a cancel.
    bool Open(GtkWidget* parent);

    void InitDialog() override;
    bool CmOk() override;
    void Command(int command) override;

private:
    LRawSettings& settings_;
    const char* section_;
};

void DlgGenRawSettings(LDialogGenContext& context);
