#include "app/main_dialog.h"

#include <gdk/gdkkeysyms.h>
#include <strings.h>

#include <algorithm>

#include "app/document_loading.h"
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
#include "gui/message_box.h"

namespace {

constexpr int kTextBox = 101;
constexpr int kVoiceLabel = 402;
constexpr int kVoiceList = 500;
constexpr int kReadButton = 510;
constexpr int kSaveButton = 511;
constexpr int kReadImage = 12;
constexpr int kSaveImage = 13;
constexpr int kTrayImage = 2;

constexpr int kTextChanged = 1111;
constexpr int kUpdateFromSelection = 1000;
constexpr int kLoadFile = 1005;
constexpr int kReadAllOfWindow = 1006;
constexpr int kReadSelectionOfWindow = 1007;
constexpr int kReadFromFileMenu = 1008;
constexpr int kReadFromSelection = 1009;
constexpr int kReadCurrent = 1011;
constexpr int kSaveCurrent = 1012;
constexpr int kSaveAllOfWindow = 1013;
constexpr int kSaveFromFileMenu = 1014;
constexpr int kSaveFromSelection = 1015;
constexpr int kReadFromFile = 1019;
constexpr int kOptions = 1021;
constexpr int kSaveFromFile = 1063;
constexpr int kSaveSelectionOfWindow = 1222;
constexpr int kOpenWindow = 4001;

constexpr char kBanner[] = "Lectora v 1.05";

constexpr LKeyToCommandMap kKeyMap[] = {
    {kKeyControl | GDK_B, kUpdateFromSelection},
    {kKeyControl | GDK_O, kLoadFile},
    {kKeyControl | kKeyShift | GDK_R, kReadCurrent},
    {kKeyControl | kKeyShift | GDK_B, kReadFromSelection},
    {kKeyControl | kKeyShift | GDK_O, kReadFromFile},
    {kKeyControl | kKeyAlt | GDK_V, kSaveCurrent},
    {kKeyControl | kKeyAlt | GDK_B, kSaveFromSelection},
    {kKeyControl | kKeyAlt | GDK_O, kSaveFromFile},
};

}  // namespace

MainDialog::MainDialog()
    : tray_([this](int button) { EvTrayIconPressed(button); }),
      voices_(*this, kVoiceList, [this] { EvVoicesAnswered(); }),
      reading_(*this) {}

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
    CoolButtonInit(kReadButton, kReadImage, "Read Aloud");
    SetTooltip(kReadButton, "Read the current text aloud (Ctrl+Shift+R)");
    AddControl(gtk_toggle_button_new(), kSaveButton);
    CoolButtonInit(kSaveButton, kSaveImage, "Save as Speech");
    SetTooltip(kSaveButton, "Save as Speech (Ctrl+Alt+V)");
    static constexpr int kFocusOrder[] = {kTextBox, kVoiceList, kReadButton, kSaveButton};
    SetFocusOrder(kFocusOrder);
}

void MainDialog::InitDialog() {
    CreateControls();
    SetStatusText(kBanner);
    SetKeyMap(kKeyMap);
    HotKeyHandlerInit(nullptr);
    HotkeysStart();
    voices_.Ask();
    HandlePDLSelChange(kVoiceList);
    HandleEditTextChange(kTextBox, kTextChanged);
    EnableControls();
    FocusControl(kTextBox);
}

void MainDialog::EvShown() {
    tray_.Add(kTrayImage, "Lectora");
    // Not in the way of a reading that is about to begin.
    if (waitingFiles_.empty())
        hotKeyOffer_.AskSoon(*this, [this] { HotkeysStart(); });
}

// Brings the window back; pressing again does not hide it.
void MainDialog::EvTrayIconPressed(int button) {
    const bool isMinimised =
        (gdk_window_get_state(gtk_widget_get_window(Widget())) & GDK_WINDOW_STATE_ICONIFIED) != 0;
    if (button == 1 && (isMinimised || !gtk_widget_get_visible(Widget())))
        CmOpen();
}

void MainDialog::DestroyDialog() {
    tray_.Remove();
    HotkeysStop();
    StopReading();
    voices_.Store();
}

void MainDialog::ShowNoSpeechEngine() {
    MessageBoxRun(
        Widget(), GTK_MESSAGE_INFO, GTK_BUTTONS_OK, "No Speech Engine Found",
        "No Speech Engine Found",
        "No voice is installed on this computer. Please download the speech engine from the "
        "speech web page, which opens when you close this message.");
    OpenInBrowser(WebAddress("speech"));
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

void MainDialog::LayoutControls(int width, int height) {
    int left = 0;
    int top = 0;
    LayoutBase(left, top, width, height);
    const int bottomRow = top + height - 60;
    const int voiceWidth = std::clamp(width - 324, 150, 286);
    MoveControl(kSaveButton, width - 154, bottomRow, 150, 54);
    MoveControl(kReadButton, width - 308, bottomRow, 150, 54);
    MoveControl(kVoiceLabel, left + 8, bottomRow + 2, voiceWidth, 24);
    MoveControl(kVoiceList, left + 8, bottomRow + 30, voiceWidth, 24);
    MoveControl(kTextBox, left + 5, top, width - left - 5, height - 66);
}

void MainDialog::EnableControls() {
    const bool hasText = GetEditTextLength(kTextBox) > 0;
    EnableControl(kReadButton, hasText || reading_.IsReading());
    EnableControl(kSaveButton, hasText);
}

void MainDialog::Command(int command) {
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
        case kOpenWindow:
            CmOpen();
            break;
        default:
            break;
    }
}

void MainDialog::EvTextChanged() {
    // What the user writes is not replaced by a file that still waits.
    if (!settingWaitingFile_)
        waitingFiles_.clear();
    highlight_.End();
    EnableControls();
}

bool MainDialog::EvKeyDown(unsigned int key) {
    if (key == GDK_Escape && reading_.IsReading()) {
        StopReading();
        return true;
    }
    return LMainWindow::EvKeyDown(key);
}

void MainDialog::CmClose() {
    LMainWindow::CmClose();
    // Nothing could bring a hidden window back but a second start, so closing ends the program.
    Close(GTK_RESPONSE_CANCEL);
}

void MainDialog::Speak(SpeakFunction speak, Stretch stretch) {
    if (speaking_ || loading_)
        return;
    speaking_ = true;
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
        const int voice = AwaitVoice();
        if (voice >= 0)
            (this->*speak)(text, voice);
    }
    speaking_ = false;
    ReadWaitingFilesSoon();
}

void MainDialog::ReadText(const std::string& text, int voice) {
    reading_.Start(Widget(), text, voice);
}

void MainDialog::SaveText(const std::string& text, int voice) {
    const std::string note = SaveSpeech(Widget(), text, voice);
    if (!note.empty())
        SetStatusText(note.c_str());
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
    while (IsOpen() && !speaking_ && !loading_ && !reading_.IsReading() && !waitingFiles_.empty()) {
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

std::string MainDialog::SelectedText() {
    for (const GdkAtom selection : {GDK_SELECTION_PRIMARY, GDK_SELECTION_CLIPBOARD}) {
        const OwnedText text(gtk_clipboard_wait_for_text(gtk_clipboard_get(selection)));
        if (text && *text != '\0')
            return text.get();
    }
    return "";
}

bool MainDialog::CmCopyFromClipboard() {
    const std::string text = SelectedText();
    if (!text.empty())
        SetEditText(kTextBox, text.c_str());
    return !text.empty();
}

void MainDialog::CmOpenFile() {
    char path[kTextBufferSize] = "";
    char folder[kTextBufferSize];
    CopyText(folder, kOpenFolderSetting.Get());
    static constexpr char kFilter[] =
        "Text Documents\0*.txt;*.text;*.TXT;*\0"
        "Web Pages\0*.html;*.htm;*.xhtml;*.HTML;*.HTM\0"
        "Books\0*.epub;*.EPUB\0"
        "Word Processor Documents\0*.odt;*.fodt;*.docx;*.ODT;*.DOCX\0"
        "PDF Documents\0*.pdf;*.PDF\0";
    if (!LFile::BrowseReadFilePath(Widget(), path, "Locate File to Read Text", folder, kFilter))
        return;
    kOpenFolderSetting.Set(folder);
    LoadFile(path, FileFrom::kUser);
}

bool MainDialog::LoadFile(const char* path, FileFrom from) {
    loading_ = true;
    const std::optional<Document> document = LoadDocumentUnderDialog(Widget(), path);
    loading_ = false;
    // The window may have been closed meanwhile.
    if (!IsOpen())
        return false;
    ReadWaitingFilesSoon();
    if (!document) {
        waitingFiles_.clear();
        return false;
    }
    if (!document->problem.empty()) {
        if (from == FileFrom::kUser)
            MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                          "Cannot read the file.", document->problem.c_str());
        else
            SetStatusText(document->problem.c_str());
        return false;
    }
    settingWaitingFile_ = from == FileFrom::kArguments;
    SetEditText(kTextBox, document->text.c_str());
    settingWaitingFile_ = false;
    return true;
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
    // The window is drawn before the first reading, which may have to wait for the engine.
    ReadWaitingFilesSoon();
}

void MainDialog::EvReadingStarted() {
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
    SetStatusText("Waiting for the voice, which is slower than speech (Esc stops)");
}

void MainDialog::EvReadingEnded(const std::string& note, bool inTrouble) {
    SetCoolButtonUp(kReadButton);
    SetStatusText(note.empty() ? kBanner : note.c_str());
    highlight_.End();
    EnableControls();
    // The next file would meet the same trouble, and its box would hide this one's.
    if (inTrouble)
        waitingFiles_.clear();
    // From the main loop: the player is still in the middle of ending this reading.
    ReadWaitingFilesSoon();
}

int MainDialog::ReadNextFile(void* self) {
    auto* window = static_cast<MainDialog*>(self);
    window->nextFile_ = 0;
    window->ReadWaitingFiles();
    return FALSE;
}
