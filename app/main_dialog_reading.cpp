// What the main window has spoken, and what it shows of the reading.
#include <strings.h>

#include "app/commands/command_numbers.h"
#include "app/main_dialog.h"
#include "app/save_speech.h"
#include "app/settings_keys.h"

void MainDialog::Speak(SpeakFunction speak, TextPane::Extent extent) {
    if (speaking_ || loading_)
        return;
    speaking_ = true;
    // Once there was a dialog it takes the desktop a moment to give the keyboard back.
    hadKeyboard_ = gtk_window_is_active(GTK_WINDOW(Widget())) != FALSE;
    GtkTextIter start;
    const std::string text = text_.Text(extent, start);
    if (!text.empty()) {
        reading_.Stop();
        if (kFollowTextSetting.Get())
            text_.Highlight().Begin(start);
        else
            text_.Highlight().End();
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
    Speak(&MainDialog::ReadText, TextPane::Extent::kAll);
}

void MainDialog::CmSave() {
    Speak(&MainDialog::SaveText, TextPane::Extent::kAll);
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
            Speak(&MainDialog::ReadText, TextPane::Extent::kAll);
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
    text_.Highlight().Show(begin, end);
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
    text_.Highlight().Hide();
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
