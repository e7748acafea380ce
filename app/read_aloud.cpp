#include "app/read_aloud.h"

#include <chrono>

#include "app/machine_check.h"
#include "app/speech_file.h"
#include "foundation/text_buffer.h"
#include "gui/message_box.h"
#include "gui/progress_dialog.h"
#include "speech/voice_table.h"

namespace {

constexpr const char* kTitle = "Synthesize Voice";
// A usual first sentence is there before a dialog could be read.
constexpr std::chrono::milliseconds kTimeWithoutDialog{300};
constexpr unsigned int kSilenceCheckMilliseconds = 500;

// Keeps the window alive meanwhile. False when the time is over.
bool WaitWithoutDialog(LSignalObjectRef signal) {
    const auto end = std::chrono::steady_clock::now() + kTimeWithoutDialog;
    while (!signal.WaitSignal(10)) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        while (gtk_events_pending())
            gtk_main_iteration_do(FALSE);
    }
    return true;
}

std::string VoiceName(int voice) {
    return VoiceAt(voice).title;
}

}  // namespace

ReadAloud::ReadAloud(ReadAloudListener& listener, Player player)
    : listener_(listener),
      isUnseen_(player == Player::kUnseen),
      info_([this] { return listener_.HasNextReading(); }),
      player_(info_, *this) {}

ReadAloud::~ReadAloud() {
    Close();
}

void ReadAloud::Start(const LPlayerNeighbour& mainWindow, const std::string& text, int voice,
                      bool takesKeyboard) {
    Stop();
    mainWindow_ = mainWindow;
    const auto reading =
        std::make_shared<SpeechReading>(text, voice, SpeechFilePath(), ReadingUse::kListening);
    info_.SetReading(reading, VoiceName(voice));
    reading->Start();
    isStarting_ = true;
    isStopped_ = false;
    isFailureTold_ = false;
    const bool hasSound = AwaitFirstSound(*reading) && !isStopped_;
    isStarting_ = false;
    position_ = 0;
    if (hasSound && isUnseen_)
        player_.RestartUnseen();
    else if (hasSound)
        player_.Restart(mainWindow, takesKeyboard);
    else if (info_.Reading() == reading)
        EndEngine();
}

bool ReadAloud::AwaitFirstSound(SpeechReading& reading) {
    LProcessResult result = reading.HasSound() ? kProcessDone : kProcessFailed;
    if (WaitWithoutDialog(reading.FirstSound())) {
        result = reading.HasSound() ? kProcessDone : kProcessFailed;
    } else if (!isStopped_) {
        LProcessDialog<SpeechReading> dialog(kTitle, reading);
        dialog.Open(BoxParent());
        result = dialog.Result();
    }
    if (result == kProcessFailed && !isStopped_ && !reading.Message().empty())
        ShowEngineTrouble(reading.Message());
    return result == kProcessDone;
}

void ReadAloud::Stop() {
    const bool wasReading = player_.IsLoaded();
    isStopped_ = true;
    player_.Stop();
    if (wasReading)
        EvPlayerEnded(PlayTrouble::kNone);
    // While the player is there, the rest of the text can still be heard.
    if (isStarting_ || !player_.IsOpen())
        EndEngine();
}

void ReadAloud::Close() {
    Stop();
    if (leaving_ != 0)
        g_source_remove(std::exchange(leaving_, 0U));
    player_.Close(kCommandOk);
    EndEngine();
}

void ReadAloud::EndEngine() {
    silence_.Stop();
    if (info_.Reading())
        info_.Reading()->Stop();
}

GtkWidget* ReadAloud::BoxParent() const {
    return player_.IsOpen() ? player_.Widget() : mainWindow_.window;
}

// Only while there may be such a silence: nothing wakes up for a reading that is paused.
void ReadAloud::WatchForSilence() {
    silence_.Start(kSilenceCheckMilliseconds, [this] {
        const SpeechTrack& track = info_.Reading()->Track();
        if (track.IsComplete())
            return;
        if (position_ + info_.Frame(LSoundTime(kSilenceCheckMilliseconds)) >= track.Frames())
            listener_.EvReadingWaits();
        WatchForSilence();
    });
}

void ReadAloud::EvPlayerStarted() {
    listener_.EvReadingStarted();
    WatchForSilence();
}

void ReadAloud::EvPlayerTime(LSoundTime time) {
    position_ = info_.Frame(time);
    const SpeechTrack& track = info_.Reading()->Track();
    listener_.EvReadingTime(time, info_.EstimatedLength());
    if (const std::optional<SpokenStretch> stretch = track.StretchAt(position_))
        listener_.EvReadingStretch(stretch->sourceBegin, stretch->sourceEnd);
}

void ReadAloud::EvPlayerEnded(PlayTrouble trouble) {
    silence_.Stop();
    if (isStarting_)
        return;  // Play was pressed in the player before there was anything to play
    // What ended by itself was read as far as the engine got.
    const SpeechReading& reading = *info_.Reading();
    const bool toItsEnd = reading.Ended().IsSignaled();
    const std::string message = toItsEnd ? reading.Message() : "";
    const bool engineFailed = toItsEnd && !isFailureTold_ &&
                              reading.Outcome() != SynthesisOutcome::kSpoken &&
                              reading.Outcome() != SynthesisOutcome::kStopped;
    isFailureTold_ = isFailureTold_ || engineFailed;
    listener_.EvReadingEnded(engineFailed ? "" : message,
                             trouble != PlayTrouble::kNone || engineFailed);
    // In trouble the player stays: another sound card can be chosen there.
    if (trouble != PlayTrouble::kNone)
        ShowTrouble(trouble);
    else if (engineFailed && !message.empty())
        ShowEngineTrouble(message);
    else
        LeaveSoon();
}

void ReadAloud::EvPlayerClosed() {
    Stop();
}

// Not in the middle of what the player is telling, and not when another reading follows at once.
void ReadAloud::LeaveSoon() {
    if (leaving_ == 0)
        leaving_ = gdk_threads_add_idle_full(G_PRIORITY_LOW, GCLeave, this, nullptr);
}

gboolean ReadAloud::GCLeave(gpointer user) {
    auto* self = static_cast<ReadAloud*>(user);
    self->leaving_ = 0;
    // A box that is up belongs to the player.
    if (!self->IsReading() && !self->player_.HasFocus() && gtk_grab_get_current() == nullptr)
        self->Close();
    return FALSE;
}

void ReadAloud::ShowEngineTrouble(const std::string& message) {
    MessageBoxRun(BoxParent(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, kTitle, message.c_str(), nullptr);
}

void ReadAloud::ShowTrouble(PlayTrouble trouble) {
    if (trouble == PlayTrouble::kDeviceLost) {
        MessageBoxRun(BoxParent(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora", "Reading stopped",
                      "The sound device stopped working while the text was read aloud.");
        return;
    }
    std::string text = "Please check that you have selected the correct sound device.";
    if (!player_.RouteText().empty())
        text += "\n\n" + player_.RouteText();
    MessageBoxRun(BoxParent(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Cannot Play", "Cannot Play",
                  text.c_str());
    RunMachineCheckWithoutCard(BoxParent());
}
