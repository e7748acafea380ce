// The page "General" of the options: start on login, what format speech is saved in, whether the
// text is kept, and in which colours it is followed.
#pragma once

#include <string>

#include "gui/windows/property_sheet.h"

class GeneralDlgImp final : public LPropertyPage {
public:
    GeneralDlgImp() { SetHelpPage("general"); }

    void InitDialog() override;
    bool CmOk() override;
    void EnableControls() override;
    void Command(int command) override;

private:
    // As the controls stand.
    struct Choice {
        bool runAtLogin = false;
        int runMode = 0;
        std::string byDefault;
        std::string format;
        bool keepText = false;
        bool byLanguage = false;
        std::string highlight;
        bool markWords = false;
        bool spellCapitals = false;
        bool sayPunctuation = false;
        bool sayEmoji = false;
    };
    Choice Choices() const;
    void ShowFormatSettings();
    void FillHighlight();
    void ShowVoice();

    Choice shown_;
};

void DlgGenGeneralDlg(LDialogGenContext& context);
