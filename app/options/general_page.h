// The page "General" of the options: start on login, what format speech is saved
// in, and whether the text is kept.
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
    };
    Choice Choices() const;
    void ShowFormatSettings();

    Choice shown_;
};

void DlgGenGeneralDlg(LDialogGenContext& context);
