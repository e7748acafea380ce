// "Say It Differently": one entry of the pronunciation list.
#pragma once

#include <string>
#include <vector>

#include "app/voices/voice_sample.h"
#include "gui/windows/dialog.h"
#include "speech/pronunciation_file.h"

class SayDifferentlyDlg final : public LDialog {
public:
    // entry is borrowed, and changed by OK.
    explicit SayDifferentlyDlg(Pronunciation& entry) : entry_(entry), example_(entry.text) {
        SetHelpPage("words");
    }

    bool Run(GtkWidget* parent);  // modal; true: OK

    void InitDialog() override;
    bool CmOk() override;
    void Command(int command) override;

private:
    Pronunciation Entered() const;
    void Hear();

    Pronunciation& entry_;
    const std::string example_;        // of what a pattern is to find
    std::vector<std::string> places_;  // of the list "For"
    VoiceSample sample_;
};

// The entry for a text of the user's list, or a new one of that text: changed in the dialog, and
// kept. GUI thread.
void SayDifferently(GtkWidget* parent, const std::string& text);
