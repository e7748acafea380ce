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

void MainDialog::SaveText(const std::string& text, int voice) {
    const std::string note = SaveSpeech(Widget(), text, voice, SuggestedName(text, text_.File()));
    if (!note.empty())
        TellStatusText(note.c_str());
}

void MainDialog::CmRead() {
    read_.Read();
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

QueuedText::Begun MainDialog::ReadWaitingFile(const std::string& path) {
    if (!IsOpen() || firstKeyboard_.IsWaiting() || saving_ || loading_)
        return QueuedText::Begun::kNotNow;
    if (!LoadFile(path, FileFrom::kArguments))
        return QueuedText::Begun::kFailed;
    read_.Read();
    keeper_.TextCame();  // it is heard from its beginning until its user has answered
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
    ShowTitle();
    if (!IsReading(news.state))
        ListRecentFilesSoon();  // and how far they were read
    const bool isPaused = news.state == ReadingState::kPaused;
    if (isPaused)
        presence_.ShowState(kTrayPausedIcon, "Lectora: paused");
    else if (IsReading(news.state))
        presence_.ShowState(kTrayReadingIcon, "Lectora: reading aloud");
    else
        presence_.ShowState(kTrayIcon, "Lectora");
    EnableControls();
}
