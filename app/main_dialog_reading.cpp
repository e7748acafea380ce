// What the main window has spoken, and what it shows of the reading.
#include <strings.h>

#include <utility>
#include <vector>

#include "app/commands/command_numbers.h"
#include "app/main_dialog.h"
#include "app/saving/save_speech.h"
#include "app/saving/suggested_name.h"
#include "app/settings_keys.h"
#include "gui/icon_numbers.h"

void MainDialog::Read(TextPane::Extent extent, const std::string& title) {
    if (saving_ || loading_)
        return;
    GtkTextIter start;
    std::string text = text_.Text(extent, start);
    if (text.empty())
        return;
    // Once there was a box it takes the desktop a moment to give the keyboard back.
    player_.Expect({Widget(), GetControlByID(kTextBox)},
                   gtk_window_is_active(GTK_WINDOW(Widget())) != FALSE);
    // The engine may be slow to wake up, or have been installed since the program was started.
    const int voice = voices_.Chosen();
    narrator_.Read(std::move(text), voice, title);
    if (kFollowTextSetting.Get())
        text_.Highlight().Begin(start);
    else
        text_.Highlight().End();
    if (voice < 0)
        voices_.Ask();
}

void MainDialog::SaveText(const std::string& text, int voice) {
    const std::string note = SaveSpeech(Widget(), text, voice, SuggestedName(text, text_.File()));
    if (!note.empty())
        TellStatusText(note.c_str());
}

void MainDialog::CmRead() {
    Read(TextPane::Extent::kAll);
}

// What is being read goes on meanwhile.
void MainDialog::CmSave() {
    if (saving_ || loading_)
        return;
    const std::string text = text_.Text();
    if (text.empty())
        return;
    saving_ = true;
    const int voice = AwaitVoice();
    if (voice >= 0)
        SaveText(text, voice);
    saving_ = false;
    narrator_.ContinueQueueSoon();
}

// The button is down while it reads, and pressing it then lets go; up while it is paused.
void MainDialog::CmReadStopOrGoOn() {
    if (narrator_.State() == ReadingState::kPaused)
        narrator_.Play();
    else if (narrator_.IsReading())
        narrator_.Stop();
    else
        Read(TextPane::Extent::kSelected);
}

QueuedText::Begun MainDialog::ReadWaitingFile(const std::string& path) {
    if (!IsOpen() || firstKeyboard_.IsWaiting() || saving_ || loading_)
        return QueuedText::Begun::kNotNow;
    if (!LoadFile(path, FileFrom::kArguments))
        return QueuedText::Begun::kFailed;
    Read(TextPane::Extent::kAll, path.substr(path.rfind('/') + 1));
    return narrator_.IsReading() ? QueuedText::Begun::kYes : QueuedText::Begun::kFailed;
}

void MainDialog::EvRunArguments(const char* const* arguments, int count) {
    if (count < 2)
        CmOpen();
    EnableControls();
    if (const VerbFacts* verb = count > 1 ? FindVerb(arguments[1]) : nullptr) {
        DoAtStart(*verb, count > 2 ? arguments[2] : "");
        return;
    }
    std::vector<std::string> files;
    for (int index = 1; index < count; ++index) {
        const char* argument = arguments[index];
        if (strcasecmp(argument, "-logon") != 0 && strcasecmp(argument, "-block") != 0)
            files.emplace_back(argument);
    }
    if (!files.empty())
        ReadFiles(files);
}

// What was asked for last is heard at once, unless a progress dialog is up: then it waits for that
// to end. Several files are read one after the other.
void MainDialog::ReadFiles(const std::vector<std::string>& files) {
    if (!saving_ && !loading_)
        narrator_.Stop();
    for (const std::string& path : files)
        narrator_.Queue({.begin = [this, path] { return ReadWaitingFile(path); }});
}

void MainDialog::EvReading(const ReadingNews& news) {
    if (!news.IsNew() || !IsOpen())
        return;
    const bool isPaused = news.state == ReadingState::kPaused;
    if (IsReading(news.state) && !isPaused)
        SetCoolButtonDown(kReadButton);
    else
        SetCoolButtonUp(kReadButton);
    if (isPaused)
        presence_.ShowState(kTrayPausedIcon, "Lectora: paused");
    else if (IsReading(news.state))
        presence_.ShowState(kTrayReadingIcon, "Lectora: reading aloud");
    else
        presence_.ShowState(kTrayIcon, "Lectora");
    EnableControls();
}
