#include "app/main_dialog.h"

#include <gdk/gdkkeysyms.h>
#include <strings.h>

#include <algorithm>

#include "app/commands.h"
#include "app/document_loading.h"
#include "app/help_links.h"
#include "app/machine_check.h"
#include "app/recent_files.h"
#include "app/save_speech.h"
#include "app/settings_keys.h"
#include "app/start_up.h"
#include "foundation/browser.h"
#include "foundation/file.h"
#include "foundation/hosts.h"
#include "foundation/owned_text.h"
#include "foundation/text_file.h"
#include "gui/accessible.h"
#include "gui/control_factory.h"
#include "gui/icon_numbers.h"
#include "gui/message_box.h"

namespace {

constexpr char kBanner[] = "Lectora v 1.05";

}  // namespace

MainDialog::MainDialog()
    : places_(*this),
      selection_([this] { EnableControls(); }),
      find_([this](const char* text) { TellStatusText(text); }, [this] { Layout(); }),
      drop_([this](const auto& paths) { EvFilesDropped(paths); },
            [this](const std::string& text) { ReplaceText(text); }),
      tray_([this](int button) { EvTrayIconPressed(button); }),
      voices_(*this, kVoiceList, [this] { EvVoicesAnswered(); }),
      reading_(*this) {
    CheckActiveWindowChange();
}

MainDialog::~MainDialog() {
    for (const unsigned int source : {nextFile_, hotKeySource_}) {
        if (source != 0)
            g_source_remove(source);
    }
}

void MainDialog::Run() {
    LMainWindow::Run("Lectora", gargv, gargc);
}

void MainDialog::CreateControls() {
    const LEditWidgets edit = NewEdit(false, GTK_POLICY_ALWAYS);
    AddControl(edit.textView, kTextBox, edit.scrolledWindow);
    history_.Attach(gtk_text_view_get_buffer(GTK_TEXT_VIEW(edit.textView)), lines_);
    lines_.Attach(gtk_text_view_get_buffer(GTK_TEXT_VIEW(edit.textView)));
    highlight_.Attach(GTK_TEXT_VIEW(edit.textView), lines_);
    original_.Attach(GTK_TEXT_VIEW(edit.textView), lines_);
    SetAccessibleName(edit.textView, "Text to read");
    SetTooltip(kTextBox, "Enter your text here or click on the Update Text button");

    GtkWidget* label = gtk_label_new("Choose Voice: ");
    gtk_widget_set_size_request(label, 40, 20);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.5F);
    AddControl(label, kVoiceLabel);
    GtkWidget* voices = NewComboBox();
    AddControl(voices, kVoiceList);
    LabelWidget(label, voices);

    AddControl(gtk_toggle_button_new(), kReadButton);
    CoolButtonInit(kReadButton, kReadButtonIcon, "Read Aloud");
    SetCoolButtonUp(kReadButton);
    SetTooltip(kReadButton, "Read the current text aloud (Ctrl+Shift+R)");
    AddControl(gtk_toggle_button_new(), kSaveButton);
    CoolButtonInit(kSaveButton, kSaveButtonIcon, "Save as Speech");
    SetTooltip(kSaveButton, "Save as Speech (Ctrl+Alt+V)");
    AddControl(places_.NewCommandBar(), kCommandBar);
    AddControl(find_.Create(GTK_TEXT_VIEW(edit.textView), lines_), kFindBar);
    textSize_.Attach(edit.textView);
    drop_.Attach(Widget(), edit.textView);
    static constexpr int kFocusOrder[] = {kCommandBar, kTextBox,    kFindBar,
                                          kVoiceList,  kReadButton, kSaveButton};
    SetFocusOrder(kFocusOrder);
}

void MainDialog::InitDialog() {
    CreateControls();
    SetStatusText(kBanner);
    places_.CreateMenus();
    places_.CheckCommandBar(ShowsCommandBar());
    AddStandardMenuItems(true);
    LHelpLinks::SetUp(*this);
    places_.ListRecentFiles(RecentFiles::List());
    SetKeyMap(MainKeyMap());
    HotkeysInit();
    voices_.Ask();
    HandlePDLSelChange(kVoiceList);
    HandleEditTextChange(kTextBox, kTextChanged);
    EnableControls();
    FocusControl(kTextBox);
    TimerSet(kKeepAliveTimer, kKeepAliveMilliseconds);
}

void MainDialog::DestroyDialog() {
    splashTimer_.Stop();
    splash_.Close();
    TimerReset(kKeepAliveTimer);
    tray_.Remove();
    HotkeysStop();
    StopReading();
    reading_.Close();
    voices_.Store();
}

void MainDialog::ShowNoSpeechEngine() {
    const int answer = MessageBoxRun(
        Widget(), GTK_MESSAGE_INFO, GTK_BUTTONS_OK, "No Speech Engine Found",
        "No Speech Engine Found",
        "No voice is installed on this computer. Please download the speech engine from the "
        "speech web page, which opens when you close this message.");
    if (answer == GTK_RESPONSE_CANCEL)
        return;  // no answer of its user: the program is told to end
    OpenInBrowser(WebAddress("speech"));
    RunMachineCheck(Widget());
}

void MainDialog::EvVoicesAnswered() {
    // Whoever waits for the voices right now tells of it.
    if (!voices_.IsKnown() && !speaking_)
        ShowNoSpeechEngine();
}

int MainDialog::AwaitVoice() {
    // The engine may be slow to wake up, or have been installed since the program was started.
    if (voices_.Chosen() < 0 && voices_.Await(Widget()) == kProcessFailed)
        ShowNoSpeechEngine();
    return voices_.Chosen();
}

void MainDialog::EnableControls() {
    voices_.Update();
    const bool hasText = GetEditTextLength(kTextBox) > 0;
    EnableControl(kReadButton, hasText || reading_.IsReading());
    EnableControl(kSaveButton, hasText);
    places_.Enable({hasText, selection_.HasText(), history_.CanUndo(), history_.CanRedo()});
    KeepFocus();
}

// The keyboard is never lost with a control that was hidden or disabled.
void MainDialog::KeepFocus() {
    if (IsOpen() && gtk_window_get_focus(GTK_WINDOW(Widget())) == nullptr)
        FocusControl(kTextBox);
}

void MainDialog::Command(int command) {
    splash_.Close();
    switch (command) {
        case kReadButton:
            // The button stays down while it reads; pressing it then lets go.
            if (reading_.IsReading())
                StopReading();
            else
                Speak(&MainDialog::ReadText, Stretch::kSelected);
            break;
        case kReadCurrent:
        case kReadAllOfWindow:
        case kReadSelectionOfWindow:
            CmRead();
            break;
        case kSaveButton:
        case kSaveCurrent:
        case kSaveAllOfWindow:
        case kSaveSelectionOfWindow:
            CmSave();
            break;
        case kUpdateFromSelection:
            CmCopyFromClipboard();
            break;
        case kLoadFile:
            CmOpenFile();
            break;
        // The second step runs even when the first brought nothing new.
        case kReadFromFileMenu:
        case kReadFromFile:
            CmOpenFile();
            CmRead();
            break;
        case kReadFromSelection:
            CmCopyFromClipboard();
            CmRead();
            break;
        case kSaveFromFileMenu:
        case kSaveFromFile:
            CmOpenFile();
            CmSave();
            break;
        case kSaveFromSelection:
            CmCopyFromClipboard();
            CmSave();
            break;
        case kOptions:
            CmOptions();
            break;
        case kTextChanged:
            EvTextChanged();
            break;
        case kVoiceList:
            voices_.NoteChange();
            break;
        default:
            if (!WindowCommand(command) && !EditCommand(command))
                LHelpLinks::Open(command);
            break;
    }
}

bool MainDialog::WindowCommand(int command) {
    switch (command) {
        case kShowCommandBar:
            CmShowCommandBar();
            return true;
        case kOpenWindow:
            CmOpen();
            return true;
        case kUpdateDropDown:
        case kReadDropDown:
        case kSaveDropDown:
            places_.DropDown(command);
            return true;
        case kCommandHelp:
            CmHelp();
            return true;
        default:
            return false;
    }
}

void MainDialog::EvActiveWindowChanged(const char* program) {
    places_.NameActiveWindow(program);
}

// X does not tell a program which window was in front before its own; where a desktop does, this is
// the place to ask it and to pass the name on to EvActiveWindowChanged.
void MainDialog::CheckActiveWindowChange() {}

void MainDialog::EvTextChanged() {
    // What the user writes is not replaced by a file that still waits.
    if (!settingWaitingFile_)
        waitingFiles_.clear();
    highlight_.End();
    EnableControls();
}

bool MainDialog::EvKeyDown(unsigned int key) {
    splash_.Close();
    if (key == GDK_Escape && find_.HasKeyboard()) {
        find_.Close();
        return true;
    }
    if (key == GDK_Escape && reading_.IsReading()) {
        StopReading();
        return true;
    }
    return LMainWindow::EvKeyDown(key);
}

void MainDialog::Speak(SpeakFunction speak, Stretch stretch) {
    if (speaking_ || loading_)
        return;
    speaking_ = true;
    // Once there was a dialog it takes the desktop a moment to give the keyboard back.
    hadKeyboard_ = gtk_window_is_active(GTK_WINDOW(Widget())) != FALSE;
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(GetControlByID(kTextBox)));
    GtkTextIter start;
    GtkTextIter end;
    if (stretch == Stretch::kAll || !gtk_text_buffer_get_selection_bounds(buffer, &start, &end))
        gtk_text_buffer_get_bounds(buffer, &start, &end);
    const std::string text = lines_.Text(start, end);
    if (!text.empty()) {
        reading_.Stop();
        if (kFollowTextSetting.Get())
            highlight_.Begin(start);
        else
            highlight_.End();
        const int voice = AwaitVoice();
        if (voice >= 0)
            (this->*speak)(text, voice);
    }
    speaking_ = false;
    ReadWaitingFilesSoon();
}

void MainDialog::ReadText(const std::string& text, int voice) {
    reading_.Start({Widget(), GetControlByID(kTextBox)}, text, voice, hadKeyboard_);
}

void MainDialog::SaveText(const std::string& text, int voice) {
    const std::string note = SaveSpeech(Widget(), text, voice);
    if (!note.empty())
        TellStatusText(note.c_str());
}

void MainDialog::CmRead() {
    Speak(&MainDialog::ReadText, Stretch::kAll);
}

void MainDialog::CmSave() {
    Speak(&MainDialog::SaveText, Stretch::kAll);
}

void MainDialog::StopReading() {
    waitingFiles_.clear();
    reading_.Stop();
}

void MainDialog::ReadWaitingFiles() {
    while (IsOpen() && !firstKeyboard_.IsWaiting() && !speaking_ && !loading_ &&
           !reading_.IsReading() && !waitingFiles_.empty()) {
        const std::string path = waitingFiles_.front();
        waitingFiles_.pop_front();
        if (LoadFile(path.c_str(), FileFrom::kArguments))
            Speak(&MainDialog::ReadText, Stretch::kAll);
    }
}

void MainDialog::ReadWaitingFilesSoon() {
    if (!waitingFiles_.empty() && nextFile_ == 0)
        nextFile_ = gdk_threads_add_idle(ReadNextFile, this);
}

void MainDialog::EvRunArguments(const char* const* arguments, int count) {
    if (count < 2)
        CmOpen();
    EnableControls();
    std::deque<std::string> files;
    for (int index = 1; index < count; ++index) {
        const char* argument = arguments[index];
        if (strcasecmp(argument, "-logon") != 0 && strcasecmp(argument, "-block") != 0)
            files.emplace_back(argument);
    }
    if (files.empty())
        return;
    // What was asked for last is heard at once, unless a progress dialog is up: then it waits for
    // that to end. Several files are read one after the other.
    if (!speaking_ && !loading_)
        StopReading();
    waitingFiles_.insert(waitingFiles_.end(), files.begin(), files.end());
    // The window is drawn, and has its place, before the first reading, whose player stands beside
    // it and which may have to wait for the engine.
    ReadWaitingFilesSoon();
}

void MainDialog::EvReadingStarted() {
    waitIsTold_ = false;
    SetCoolButtonDown(kReadButton);
}

void MainDialog::EvReadingTime(LSoundTime position, LSoundTime length) {
    char now[kSoundTimeTextSize];
    char whole[kSoundTimeTextSize];
    position._GetText0(now);
    length._GetText0(whole);
    SetStatusText(("Reading aloud: " + std::string(now) + " of " + whole + " (Esc stops)").c_str());
}

void MainDialog::EvReadingStretch(std::size_t begin, std::size_t end) {
    highlight_.Show(begin, end);
}

void MainDialog::EvReadingWaits() {
    constexpr const char* kNote = "Waiting for the voice, which is slower than speech (Esc stops)";
    waitIsTold_ ? SetStatusText(kNote) : TellStatusText(kNote);
    waitIsTold_ = true;
}

void MainDialog::EvReadingEnded(const std::string& note, bool inTrouble) {
    SetCoolButtonUp(kReadButton);
    if (note.empty())
        SetStatusText(kBanner);
    else
        TellStatusText(note.c_str());
    highlight_.Hide();
    EnableControls();
    // The next file would meet the same trouble, and its box would hide this one's.
    if (inTrouble)
        waitingFiles_.clear();
    // From the main loop: the player is still in the middle of ending this reading.
    ReadWaitingFilesSoon();
}

void MainDialog::EvNextReading() {
    reading_.Stop();
    ReadWaitingFilesSoon();
}

int MainDialog::ReadNextFile(void* self) {
    auto* window = static_cast<MainDialog*>(self);
    window->nextFile_ = 0;
    window->ReadWaitingFiles();
    return FALSE;
}
