// The page "Words" of the options: the user's pronunciation list.
#pragma once

#include <string>

#include "gui/windows/property_sheet.h"
#include "speech/pronunciation_file.h"

// What is added, changed, removed or imported is kept at once, whatever ends the options.
class WordsPage final : public LPropertyPage {
public:
    WordsPage() { SetHelpPage("words"); }

    void InitDialog() override;
    void EnableControls() override;
    void Command(int command) override;

private:
    void FillList(std::size_t selected);
    void Load();
    bool Keep(PronunciationList list, std::size_t selected);
    void Add();
    void Change(std::size_t index);
    void Remove(std::size_t index);
    void Import();

    PronunciationList list_;
    std::string state_;  // of the files when the list was read or kept
};

void DlgGenWordsPage(LDialogGenContext& context);
