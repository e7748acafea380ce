#include "app/words/say_differently_dialog.h"

#include <algorithm>
#include <optional>

#include "app/words/keep_pronunciations.h"
#include "gui/accessible.h"
#include "gui/windows/dialog_gen_context.h"
#include "gui/windows/message_box.h"
#include "speech/chosen_voice.h"
#include "speech/pronunciations.h"
#include "speech/text_language.h"
#include "speech/voice_table.h"
#include "speech/voice_title.h"

namespace {

constexpr int kWordText = 101;
constexpr int kSaid = 103;
constexpr int kFor = 105;
constexpr int kHeedsCase = 107;
constexpr int kIsPattern = 108;
constexpr int kHear = 109;
constexpr int kDialogWidth = 440;

// Lines and blanks of a selection are as good as one blank each.
std::string OnOneLine(const std::string& text) {
    std::string line;
    for (const char byte : text) {
        const bool isBlank = static_cast<unsigned char>(byte) <= ' ';
        if (!isBlank)
            line += byte;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

void DlgGenSayDifferently(LDialogGenContext& context) {
    context.SetWidth(kDialogWidth);
    context.AddInput(kWordText, "Text:");
    context.AddInput(kSaid, "Say it as:");
    context.AddStatic(-1, "Left empty, the text is skipped.");
    context.AddPullDownList(kFor, "For:");
    context.AddCheckBox(kHeedsCase, "Only with these capitals");
    context.AddCheckBox(kIsPattern, "The text is a pattern (regular expression)");
    context.AddSpecialOkCancelHelp(kHear, "Hear It", kOkCancelHelp);
}

// None: the user has been told why it cannot be read.
std::optional<PronunciationList> LoadedList(GtkWidget* parent) {
    PronunciationList list = LoadOwnPronunciations();
    const std::string problem = ReadingProblem(list);
    if (problem.empty())
        return list;
    MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                  "The word could not be kept.", problem.c_str());
    return std::nullopt;
}

std::vector<Pronunciation>::iterator EntryOf(const std::string& text, PronunciationList& list) {
    return std::ranges::find_if(list.entries, [&text](const Pronunciation& entry) {
        return !entry.isPattern && entry.text == text;
    });
}

}  // namespace

bool SayDifferentlyDlg::Run(GtkWidget* parent) {
    return Open(parent, {"Say It Differently", false, DlgGenSayDifferently}, true);
}

void SayDifferentlyDlg::InitDialog() {
    SetText(kWordText, entry_.text.c_str());
    SetText(kSaid, entry_.said.c_str());
    SetCheck(kHeedsCase, entry_.heedsCase);
    SetCheck(kIsPattern, entry_.isPattern);
    const Voice voice = VoiceAt(ChosenVoice());
    const auto add = [this](const std::string& place, const std::string& label) {
        if (std::ranges::find(places_, place) != places_.end())
            return;
        places_.push_back(place);
        PDLAddString(kFor, label.c_str());
    };
    add("", "Every voice");
    const std::string language(LanguageOnly(voice.language));
    add(language, "Voices for " + LanguageTitle(language, language));
    add(KeyOf(voice), "The voice " + voice.title);
    add(entry_.where, entry_.where);
    const auto chosen = std::ranges::find(places_, entry_.where) - places_.begin();
    PDLSetCurSel(kFor, static_cast<int>(chosen));
    gtk_widget_grab_focus(GetControlByID(entry_.text.empty() ? kWordText : kSaid));
}

Pronunciation SayDifferentlyDlg::Entered() const {
    const auto place = static_cast<std::size_t>(std::max(0, PDLGetCurSel(kFor)));
    return {OnOneLine(GetText(kWordText)),
            OnOneLine(GetText(kSaid)),
            place < places_.size() ? places_[place] : "",
            GetCheck(kIsPattern),
            GetCheck(kHeedsCase),
            entry_.above};
}

void SayDifferentlyDlg::Command(int command) {
    if (command == kHear)
        Hear();
}

void SayDifferentlyDlg::Hear() {
    const Pronunciation entry = Entered();
    if (const std::string problem = ProblemOf(entry); !problem.empty()) {
        SetControlInvalid(kWordText, problem.c_str(), "Text");
        return;
    }
    const std::string said = SayWith(entry, entry.isPattern ? example_ : entry.text);
    if (said.empty())
        TellScreenReader(Widget(), "This text is skipped.");
    else
        sample_.Hear(Widget(), said, std::max(0, ChosenVoice()));
}

bool SayDifferentlyDlg::CmOk() {
    const Pronunciation entry = Entered();
    const std::string problem = ProblemOf(entry);
    if (!problem.empty())
        SetControlInvalid(kWordText, problem.c_str(), "Text");
    else
        entry_ = entry;
    return problem.empty();
}

void SayDifferently(GtkWidget* parent, const std::string& text) {
    const std::string wanted = OnOneLine(text);
    std::optional<PronunciationList> list = LoadedList(parent);
    if (!list)
        return;
    const auto present = EntryOf(wanted, *list);
    Pronunciation entry =
        present == list->entries.end() ? Pronunciation{wanted, wanted, "", false, false} : *present;
    if (!SayDifferentlyDlg(entry).Run(parent))
        return;
    // Anew: another program may have written it while the dialog was open.
    list = LoadedList(parent);
    if (!list)
        return;
    const auto place = EntryOf(wanted, *list);
    // What was added last goes before what would say otherwise.
    const bool isNew = place == list->entries.end();
    entry.above = isNew ? "" : place->above;
    if (isNew)
        list->entries.insert(list->entries.begin(), entry);
    else
        *place = entry;
    KeepPronunciations(parent, *list);
}
