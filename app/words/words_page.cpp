#include "app/words/words_page.h"

#include <fcntl.h>

#include <algorithm>
#include <string>

#include "app/words/keep_pronunciations.h"
#include "app/words/say_differently_dialog.h"
#include "documents/text_charset.h"
#include "foundation/files/file.h"
#include "foundation/files/file_io.h"
#include "gui/accessible.h"
#include "gui/windows/dialog_gen_context.h"
#include "gui/windows/message_box.h"

namespace {

constexpr int kWords = 108;
constexpr int kAddWord = 109;
constexpr int kChangeWord = 110;
constexpr int kRemoveWord = 111;
constexpr int kImportWords = 112;
constexpr int kCount = 113;
constexpr LRows kWordsHeight{4};
// More rows would make the list slow; the others are in the file.
constexpr std::size_t kMostShown = 2000;
constexpr std::size_t kLargestImport = 32 << 20;

constexpr const char* kWordsGroup = "Words Said Differently";

}  // namespace

void DlgGenWordsPage(LDialogGenContext& context) {
    context.AddGroup(-1, kWordsGroup);
    context.AddList(kWords, kWordsHeight);
    context.AddStatic(kCount, "");
    context.StartHBox();
    context.AddButton(kAddWord, "Add...");
    context.AddButton(kChangeWord, "Change...");
    context.AddButton(kRemoveWord, "Remove");
    context.AddButton(kImportWords, "Import...");
    context.EndHBox();
    context.GroupEnd();
}

void WordsPage::InitDialog() {
    static constexpr LListColumn kColumns[] = {{"Text", 0}, {"Said as", 0}, {"For", 0}};
    LVInit(kWords, {LListColumns::kDynamic, kColumns});
    SetAccessibleName(GetControlByID(kWords), kWordsGroup);
    HandleLVSelChange(kWords);
    HandleLVDoubleClick(kWords, kChangeWord);
    Load();
}

void WordsPage::Load() {
    state_ = PronunciationFilesState();
    list_ = LoadOwnPronunciations();
    FillList(0);
}

void WordsPage::FillList(std::size_t selected) {
    LVClear(kWords);
    const std::vector<Pronunciation>& entries = list_.entries;
    const std::size_t shown = std::min(entries.size(), kMostShown);
    for (std::size_t i = 0; i < shown; ++i) {
        const Pronunciation& entry = entries[i];
        LVAddRow(kWords,
                 {entry.text.c_str(), entry.said.empty() ? "(skipped)" : entry.said.c_str(),
                  entry.where.empty() ? "Every voice" : entry.where.c_str()},
                 static_cast<int>(i));
    }
    if (shown > 0)
        LVSetCurSel(kWords, static_cast<int>(std::min(selected, shown - 1)));
    std::string told = ReadingProblem(list_);
    if (shown < entries.size())
        told = "The first " + std::to_string(shown) + " of " + std::to_string(entries.size()) +
               " entries are shown.";
    if (list_.leftOut > 0)
        told += (told.empty() ? "" : " ") + std::to_string(list_.leftOut) +
                (list_.leftOut == 1 ? " line" : " lines") +
                " of the list cannot be used and are kept as they are.";
    SetStaticText(kCount, told.c_str());
    EnableControls();
}

void WordsPage::EnableControls() {
    const bool hasSelection = LVGetFirstSel(kWords) >= 0;
    EnableControl(kChangeWord, hasSelection);
    EnableControl(kRemoveWord, hasSelection);
    EnableControl(kAddWord, list_.error == 0);
    EnableControl(kImportWords, list_.error == 0);
}

void WordsPage::Command(int command) {
    const int row = LVGetFirstSel(kWords);
    const auto index = static_cast<std::size_t>(std::max(0, row));
    if (command == kAddWord)
        Add();
    else if (command == kImportWords)
        Import();
    else if (command == kChangeWord && row >= 0)
        Change(index);
    else if (command == kRemoveWord && row >= 0)
        Remove(index);
}

// Another program, or the key for a single word, may have written it since it was read.
bool WordsPage::Keep(PronunciationList list, std::size_t selected) {
    if (state_ != PronunciationFilesState()) {
        Load();
        MessageBoxRun(Widget(), GTK_MESSAGE_WARNING, GTK_BUTTONS_OK, "Lectora",
                      "The list was changed by another program.",
                      "It is shown as it is now. Please make your change again.");
        return false;
    }
    if (!KeepPronunciations(Widget(), list))
        return false;
    state_ = PronunciationFilesState();
    list_ = std::move(list);
    FillList(selected);
    return true;
}

void WordsPage::Add() {
    PronunciationList list = list_;
    Pronunciation& added = *list.entries.insert(list.entries.begin(), Pronunciation());
    if (SayDifferentlyDlg(added).Run(Widget()))
        Keep(std::move(list), 0);
}

void WordsPage::Change(std::size_t index) {
    PronunciationList list = list_;
    if (SayDifferentlyDlg(list.entries[index]).Run(Widget()))
        Keep(std::move(list), index);
}

void WordsPage::Remove(std::size_t index) {
    PronunciationList list = list_;
    RemovePronunciation(list, index);
    Keep(std::move(list), index);
}

// What is there already stays in front.
void WordsPage::Import() {
    std::string path;
    std::string folder;
    if (!LFile::BrowseReadFilePath(Widget(), path, "Import Words", folder, nullptr))
        return;
    std::string file;
    const UniqueFd opened = OpenFileForReading(path.c_str());
    PronunciationList list = list_;
    std::size_t leftOut = 0;
    if (opened.IsOpen() && ReadWholeFile(opened.Get(), kLargestImport, file))
        std::ranges::move(ImportPronunciations(DecodeText(file), leftOut),
                          std::back_inserter(list.entries));
    const std::size_t present = list_.entries.size();
    const std::size_t imported = list.entries.size() - present;
    if (imported > 0 && !Keep(std::move(list), present))
        return;
    const std::string told = imported == 0 ? "Nothing could be imported from " + path + "."
                                           : std::to_string(imported) + " entries were imported.";
    std::string detail;
    if (imported == 0 || leftOut > 0)
        detail =
            "A line holds a text and what is said in its place, parted by a tab, an equals sign, a "
            "semicolon or a comma. Lines left out: " +
            std::to_string(leftOut) + ".";
    MessageBoxRun(Widget(), GTK_MESSAGE_INFO, GTK_BUTTONS_OK, "Lectora", told.c_str(),
                  detail.c_str());
}
