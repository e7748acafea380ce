// A text and a voice, spoken into a WAV file.
#pragma once

#include <string>
#include <utility>

#include "gui/windows/dialog.h"

class LTTSInputDialog final : public LDialog {
public:
    // The text is borrowed: what the user has made of it when he presses OK. The sound goes to
    // outputPath.
    LTTSInputDialog(std::string& text, std::string outputPath)
        : text_(text), outputPath_(std::move(outputPath)) {
        SetHelpPage("saving");
    }

    // Modal; true: the sound is there. GUI thread, GDK lock held. Asks the engine for its voices
    // when nobody has before, which takes up to 1.1 s.
    bool Run(GtkWidget* parent);

    void InitDialog() override;
    bool CmOk() override;

private:
    std::string& text_;
    const std::string outputPath_;
};

void DlgGenTTSInput(LDialogGenContext& context);
