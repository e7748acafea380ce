#include "app/books/audiobook_dialog.h"

#include <sys/stat.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "app/books/book_details_dialog.h"
#include "app/books/book_loading.h"
#include "app/books/book_needs.h"
#include "app/books/book_questions.h"
#include "app/books/book_text.h"
#include "app/books/book_words.h"
#include "app/settings_keys.h"
#include "foundation/files/file.h"
#include "gui/accessible.h"
#include "gui/control_focus.h"
#include "gui/windows/message_box.h"

using namespace AudiobookControls;

namespace {

constexpr guint kFollowMs = 500;
constexpr const char* kBoxTitle = "Save as Audiobook";

}  // namespace

AudiobookDialog::AudiobookDialog(std::function<void(const char*)> tell) : tell_(std::move(tell)) {
    SetHelpPage("audiobooks");
}

void AudiobookDialog::Show(GtkWidget* parent, int voice) {
    voice_ = voice;
    if (IsOpen() && gtk_widget_get_visible(Widget()))
        gtk_window_present(GTK_WINDOW(Widget()));
    else
        Open(parent, {kBoxTitle, false, DlgGenAudiobook}, false);
    FillVoices(voice);
    if (!std::exchange(isRestored_, true))
        AddKeptBooks();
    EnableControls();
}

void AudiobookDialog::InitDialog() {
    static constexpr LListColumn kColumns[] = {
        {"Document", 38}, {"Length", 11}, {"Size", 11}, {"State", 38}};
    LVInit(kDocuments, {LListColumns::kPercent, kColumns});
    SetAccessibleName(GetControlByID(kDocuments), "Documents");
    HandleLVSelChange(kDocuments);
    HandleLVDoubleClick(kDocuments, kDetails);
    for (const int list :
         {kBookFormat, kBookQuality, kBookFiles, kBookVoice, kBookSpeed, kSilence, kSubtitleForm})
        HandlePDLSelChange(list);
    voicesShown_ = 0;
    saysGoOn_ = false;
    FillVoices(voice_);
    ShowChoices();
    for (std::size_t i = 0; i < list_.Count(); ++i)
        LVAddString(kDocuments, list_.At(i).plan.title.c_str());
    if (list_.Count() > 0)
        LVSetCurSel(kDocuments, 0);
    // What is being made goes on without the window.
    if (auto* close = GTK_BUTTON(GetControlByID(kCommandCancel))) {
        gtk_button_set_use_stock(close, FALSE);
        gtk_button_set_label(close, "_Close");
    }
    FocusControl(kDocuments);
    FollowWork();
}

void AudiobookDialog::DestroyDialog() {
    StoreBookChoices(Choices());
}

void AudiobookDialog::FillVoices(int chosen) {
    const std::vector<Voice> voices = KnownVoices();
    if (static_cast<int>(voices.size()) == voicesShown_)
        return;
    for (auto i = static_cast<std::size_t>(voicesShown_); i < voices.size(); ++i)
        PDLAddString(kBookVoice, voices[i].title.c_str());
    voicesShown_ = static_cast<int>(voices.size());
    PDLSetCurSel(kBookVoice, std::max(0, chosen));
}

void AudiobookDialog::ShowChoices() {
    const BookChoices choices = LoadBookChoices();
    for (const SoundType type : kBookTypes)
        PDLAddString(kBookFormat, TitleOf(type));
    PDLAddString(kBookFormat, "EPUB with sound");
    const auto* const type = std::ranges::find(kBookTypes, choices.type);
    PDLSetCurSel(kBookFormat, static_cast<int>((choices.isReadAlong ? std::end(kBookTypes) : type) -
                                               std::begin(kBookTypes)));
    ShowQualities(choices.quality);
    PDLAddString(kBookFiles, "One for the book");
    PDLAddString(kBookFiles, "One a chapter");
    PDLSetCurSel(kBookFiles, choices.inChapters ? 1 : 0);
    PDLAddString(kBookSpeed, "As I listen to it");
    PDLAddString(kBookSpeed, "The voice's own");
    PDLSetCurSel(kBookSpeed, choices.asListenedTo ? 0 : 1);
    PDLAddString(kSilence, "None");
    for (int seconds = 1; seconds <= kMostSecondsBetween; ++seconds)
        PDLAddString(kSilence, SilenceText(seconds).c_str());
    PDLSetCurSel(kSilence, choices.secondsBetween);
    PDLAddString(kSubtitleForm, "None");
    for (const SubtitleForm form : kSubtitleForms)
        PDLAddString(kSubtitleForm, TitleOf(form));
    PDLSetCurSel(kSubtitleForm, choices.subtitles ? 1 + static_cast<int>(*choices.subtitles) : 0);
    SetCheck(kEvensLoudness, choices.evensLoudness);
    SetCheck(kBookByLanguage, choices.byLanguage);
    SetText(kBookFolder, choices.folder.c_str());
}

void AudiobookDialog::ShowQualities(BookQuality chosen) {
    const SoundType type = Choices().type;
    PDLClear(kBookQuality);
    for (const BookQuality quality : kBookQualities)
        PDLAddString(kBookQuality, QualityText(type, quality).c_str());
    PDLSetCurSel(kBookQuality, static_cast<int>(chosen));
}

BookChoices AudiobookDialog::Choices() const {
    const auto chosen = [this](int list) {
        return static_cast<std::size_t>(std::max(0, PDLGetCurSel(list)));
    };
    BookChoices choices;
    choices.isReadAlong = chosen(kBookFormat) == std::size(kBookTypes);
    if (!choices.isReadAlong)
        choices.type = kBookTypes[chosen(kBookFormat)];
    choices.quality = kBookQualities[chosen(kBookQuality)];
    choices.inChapters = chosen(kBookFiles) == 1 && !choices.isReadAlong;
    choices.asListenedTo = chosen(kBookSpeed) == 0;
    choices.evensLoudness = GetCheck(kEvensLoudness);
    choices.byLanguage = GetCheck(kBookByLanguage);
    choices.secondsBetween = static_cast<int>(chosen(kSilence));
    if (const std::size_t form = chosen(kSubtitleForm); form > 0 && !choices.isReadAlong)
        choices.subtitles = kSubtitleForms[form - 1];
    choices.folder = GetText(kBookFolder);
    while (choices.folder.size() > 1 && choices.folder.back() == '/')
        choices.folder.pop_back();
    return choices;
}

std::size_t AudiobookDialog::Selected() const {
    const int row = LVGetFirstSel(kDocuments);
    return row >= 0 ? static_cast<std::size_t>(row) : list_.Count();
}

void AudiobookDialog::EnableControls() {
    const std::size_t selected = Selected();
    const bool isAny = selected < list_.Count();
    const bool isOnItsWay = isAny && list_.IsOnItsWay(selected);
    EnableControl(kRemoveDocument, isAny && !isOnItsWay);
    EnableControl(kDetails, isAny && list_.IsOpen(selected));
    EnableControl(kBreakOff, isOnItsWay);
    const BookChoices choices = Choices();
    EnableControl(kBookQuality, HasQuality(choices.type));
    EnableControl(kBookFiles, !choices.isReadAlong);
    EnableControl(kSubtitleForm, !choices.isReadAlong);
    bool canStart = false;
    for (std::size_t i = 0; i < list_.Count(); ++i)
        canStart = canStart || list_.IsOpen(i);
    SetControlSensitive(gtk_dialog_get_widget_for_response(GTK_DIALOG(Widget()), GTK_RESPONSE_OK),
                        canStart);
    EnableControl(kPause, list_.Queue().IsAtWork());
    if (const bool isPaused = list_.Queue().IsPaused();
        std::exchange(saysGoOn_, isPaused) != isPaused)
        SetButtonText(kPause, isPaused ? "&Go On" : "&Pause");
    ShowBooks();
}

void AudiobookDialog::Command(int command) {
    static constexpr struct {
        int command;
        void (AudiobookDialog::*act)();
    } kActs[] = {
        {kAddDocuments, &AudiobookDialog::CmAdd}, {kRemoveDocument, &AudiobookDialog::CmRemove},
        {kDetails, &AudiobookDialog::CmDetails},  {kBreakOff, &AudiobookDialog::CmBreakOff},
        {kBrowse, &AudiobookDialog::CmBrowse},    {kPause, &AudiobookDialog::CmPause},
        {kCommandOk, &AudiobookDialog::CmStart},  {kCommandCancel, &AudiobookDialog::CmClose},
        {kCommandHelp, &AudiobookDialog::CmHelp}};
    if (command == kBookFormat)
        ShowQualities(Choices().quality);
    for (const auto& each : kActs)
        if (each.command == command)
            (this->*each.act)();
}

void AudiobookDialog::Add(BookEntry entry, bool again) {
    const std::string title = entry.plan.title;
    if (!list_.Add(std::move(entry), again))
        return;
    LVAddString(kDocuments, title.c_str());
    LVSetCurSel(kDocuments, static_cast<int>(list_.Count()) - 1);
}

void AudiobookDialog::CmAdd() {
    static constexpr char kFilters[] =
        "Documents\0*\0"
        "Books\0*.epub;*.fb2;*.EPUB;*.FB2\0";
    LFile::BrowseMultiplePaths paths;
    std::string folder = kOpenFolderSetting.Get();
    if (!LFile::BrowseMultipleReadFiles(Widget(), paths, "Add Documents", folder, kFilters))
        return;
    KeepFolder(kOpenFolderSetting, folder);
    std::vector<KeptBook> books;
    for (const std::string& path : paths)
        books.push_back({.path = path});
    AddFiles(books, true);
}

// What the last run of the program was at goes on in the voice that it was begun in.
void AudiobookDialog::AddKeptBooks() {
    const std::vector<KeptBook> books = LoadKeptBooks();
    AddFiles(books, false);
    const int voice = books.empty() ? -1 : FindVoice(books.front().voice);
    if (voice >= 0 && IsOpen())
        PDLSetCurSel(kBookVoice, voice);
}

void AudiobookDialog::AddFiles(const std::vector<KeptBook>& books, bool again) {
    std::string problems;
    const auto add = [&problems](const std::string& what, const std::string& problem) {
        if (!problem.empty())
            problems += (problems.empty() ? "" : "\n") + what + ": " + problem;
    };
    for (auto book = books.begin(); book != books.end(); ++book) {
        std::string problem;
        std::optional<BookEntry> entry = LoadBookEntry(Widget(), *book, problem);
        if (!IsOpen() || (!entry && problem.empty())) {
            if (!again)  // cancelled: the next run may have more time
                list_.KeepForLater({book, books.end()});
            break;
        }
        add(IsBookText(book->path) ? book->title : book->path, problem);
        if (!entry)
            continue;
        if (!book->title.empty())
            add(book->coverPath, Restore(*book, *entry));
        Add(*std::move(entry), again);
    }
    if (!problems.empty() && IsOpen())
        MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, kBoxTitle,
                      "Not everything can be read.", problems.c_str());
}

void AudiobookDialog::CmRemove() {
    const std::size_t selected = Selected();
    if (selected >= list_.Count() || list_.IsOnItsWay(selected))
        return;
    list_.Remove(selected);
    LVDeleteItem(kDocuments, static_cast<int>(selected));
    if (list_.Count() > 0)
        LVSetCurSel(kDocuments, static_cast<int>(std::min(selected, list_.Count() - 1)));
    FocusControl(kDocuments);  // the button may be off now
}

void AudiobookDialog::CmDetails() {
    const std::size_t selected = Selected();
    if (selected >= list_.Count() || !list_.IsOpen(selected))
        return;
    BookEntry& entry = list_.Change(selected);
    if (BookDetailsDlg(entry).Run(Widget()) && IsOpen())
        LVSetString(kDocuments, static_cast<int>(selected), entry.plan.title.c_str());
}

void AudiobookDialog::CmBrowse() {
    std::string folder = GetText(kBookFolder);
    if (LFile::BrowseFolder(Widget(), folder, "Folder for Audiobooks"))
        SetText(kBookFolder, folder.c_str());
}

void AudiobookDialog::CmBreakOff() {
    if (Selected() < list_.Count())
        list_.BreakOff(Selected());
    FocusControl(kDocuments);
}

void AudiobookDialog::CmPause() {
    BookQueue& queue = list_.Queue();
    queue.Pause(!queue.IsPaused());
    EnableControls();
    Tell(queue.IsPaused() ? "Paused." : "Goes on.");
}

// Whatever can be known before is told before the engine speaks for hours.
bool AudiobookDialog::IsReadyToStart(const BookChoices& choices) {
    struct stat info = {};
    if (choices.folder[0] != '/' || ::stat(choices.folder.c_str(), &info) != 0 ||
        !S_ISDIR(info.st_mode)) {
        SetControlInvalid(kBookFolder, "There is no such folder.", "Folder");
        return false;
    }
    return HasWhatBooksNeed(Widget(), kBoxTitle, choices.type) && IsOpen() &&
           AsksOfRoom(Widget(), kBoxTitle, choices.folder,
                      list_.EstimateOfOpen(OrderOf(choices, ChosenVoiceOf())));
}

void AudiobookDialog::CmStart() {
    const BookChoices choices = Choices();
    if (!IsReadyToStart(choices) || !IsOpen())
        return;
    StoreBookChoices(choices);
    std::string names;
    const std::set<std::string> taken = list_.TakenTargets(choices);
    for (const std::string& target : taken)
        names += (names.empty() ? "" : "\n") + target;
    if (!taken.empty() &&
        MessageBoxRun(Widget(), GTK_MESSAGE_QUESTION, GTK_BUTTONS_YES_NO, kBoxTitle,
                      "Replace what is there?", names.c_str()) != GTK_RESPONSE_YES)
        return;
    const BegunOtherwise begun = list_.BegunOtherwiseThan(choices, ChosenVoiceOf());
    bool asBegun = false;
    if (!IsOpen() || !AsksOfUnfinished(Widget(), kBoxTitle, begun, asBegun) || !IsOpen())
        return;
    if (const std::string problems = list_.Start(choices, ChosenVoiceOf(), taken, asBegun);
        !problems.empty())
        MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, kBoxTitle,
                      "Not everything goes as you have asked.", problems.c_str());
    FocusControl(kDocuments);  // the button is off now
    FollowWork();
}

void AudiobookDialog::ShowRow(int row, int column, const std::string& text) {
    char shown[kTextBufferSize];
    LVGetColumnString(kDocuments, row, column, shown);
    if (text != shown)  // what stays the same is not told anew
        LVSetColumnString(kDocuments, row, column, text.c_str());
}

void AudiobookDialog::ShowBooks() {
    const BookOrder manner = OrderOf(Choices(), ChosenVoiceOf());
    const std::size_t selected = Selected();
    std::string message;
    for (std::size_t i = 0; i < list_.Count(); ++i) {
        const int row = static_cast<int>(i);
        if (list_.IsOpen(i)) {
            const BookEstimate estimate = list_.EstimateOf(i, manner);
            ShowRow(row, kLengthColumn, LengthText(estimate.seconds));
            ShowRow(row, kSizeColumn, SizeText(static_cast<double>(estimate.bytes)));
        }
        const BookState state = list_.At(i).number ? list_.StateOf(i) : BookState{};
        ShowRow(row, kBookStateColumn,
                list_.At(i).number ? StateText(state, list_.Queue().IsPaused()) : "");
        if (i == selected)
            message = list_.At(i).number ? StateDetails(state, list_.At(i).target)
                                         : list_.At(i).plan.remark;
    }
    if (message != GetEditText(kMessage))
        SetEditText(kMessage, message.c_str());
    PBSetProgress(kDone, list_.Fraction());
    ShowEstimate(manner);
}

void AudiobookDialog::ShowEstimate(const BookOrder& manner) {
    const BookEstimate whole = list_.EstimateOfOpen(manner);
    std::string text;
    if (whole.seconds > 0)
        text = "To be made: about " + LengthText(whole.seconds) + " hours, " +
               SizeText(static_cast<double>(whole.bytes)) + ".";
    else if (list_.Count() == 0)
        text = "Add documents that are to become audiobooks.";
    if (const std::optional<double> free = FreeBytes(Choices().folder))
        text += (text.empty() ? "" : " ") + SizeText(*free) + " of the disk are free.";
    if (std::exchange(shownEstimate_, text) != text)
        SetStaticText(kEstimate, text.c_str());
}

void AudiobookDialog::FollowWork() {
    for (const std::size_t index : list_.TakeEnds()) {
        const BookEntry& entry = list_.At(index);
        const BookState state = list_.StateOf(index);
        Tell(entry.plan.title + ": " + StateDetails(state, entry.target));
    }
    if (list_.Queue().IsAtWork())
        timer_.Start(kFollowMs, [this] { FollowWork(); });
    else if (list_.Queue().IsPaused())
        list_.Queue().Pause(false);
    if (IsOpen())
        EnableControls();
}

void AudiobookDialog::Tell(const std::string& text) {
    if (IsOpen() && gtk_widget_get_visible(Widget()))
        TellScreenReader(Widget(), text.c_str());
    else
        tell_(text.c_str());
}
