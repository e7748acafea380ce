#include "app/read_aloud.h"

#include <chrono>

#include "app/machine_check.h"
#include "app/settings_keys.h"
#include "app/speech_file.h"
#include "gui/message_box.h"
#include "gui/progress_dialog.h"

namespace {

constexpr int kPlayerId = 1;
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

}  // namespace

ReadAloud::ReadAloud(ReadAloudListener& listener)
    : listener_(listener), player_(this, kPlayerId, LSoundPlayDevice()) {
    player_.SetTroubleHandler([this](PlayTrouble trouble) { EvTrouble(trouble); });
}

ReadAloud::~ReadAloud() {
    Stop();
}

void ReadAloud::Start(GtkWidget* parent, const std::string& text, int voice) {
    Stop();
    parent_ = parent;
    const auto reading =
        std::make_shared<SpeechReading>(text, voice, SpeechFilePath(), ReadingUse::kListening);
    reading_ = reading;
    reading->Start();
    isStarting_ = true;
    const bool hasSound = AwaitFirstSound(*reading);
    isStarting_ = false;
    // Stopped meanwhile, or the window is gone.
    if (reading_ != reading)
        return;
    if (hasSound)
        Play(reading->OpenSource());
    else
        EndEngine();
}

bool ReadAloud::AwaitFirstSound(SpeechReading& reading) {
    LProcessResult result = reading.HasSound() ? kProcessDone : kProcessFailed;
    if (WaitWithoutDialog(reading.FirstSound())) {
        result = reading.HasSound() ? kProcessDone : kProcessFailed;
    } else if (reading_.get() == &reading) {
        LProcessDialog<SpeechReading> dialog(kTitle, reading);
        dialog.Open(parent_);
        result = dialog.Result();
    }
    if (result == kProcessFailed && reading_.get() == &reading && !reading.Message().empty())
        MessageBoxRun(parent_, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, kTitle, reading.Message().c_str(),
                      nullptr);
    return result == kProcessDone;
}

void ReadAloud::Play(const LSoundSource& source) {
    rate_ = source->SampleRate();
    position_ = 0;
    // The card is looked up at each reading: it may have been plugged in since the last.
    player_.SetDevice(LSoundPlayDevice(kDeviceSetting.Get().c_str()));
    if (!player_.Start(source)) {
        EndEngine();
        ShowTrouble(PlayTrouble::kCannotOpen);
        return;
    }
    silenceTimer_ = gdk_threads_add_timeout(kSilenceCheckMilliseconds, GCLookForSilence, this);
}

void ReadAloud::Stop() {
    player_.Stop();
    EndEngine();
}

void ReadAloud::EndEngine() {
    if (silenceTimer_ != 0)
        g_source_remove(silenceTimer_);
    silenceTimer_ = 0;
    if (reading_)
        reading_->Stop();
    reading_.reset();
}

gboolean ReadAloud::GCLookForSilence(gpointer user) {
    auto* self = static_cast<ReadAloud*>(user);
    const SpeechTrack& track = self->reading_->Track();
    if (!track.IsComplete() && self->position_ + self->rate_ / 2 >= track.Frames())
        self->listener_.EvReadingWaits();
    return TRUE;
}

void ReadAloud::spntfPlay(int) {
    listener_.EvReadingStarted();
}

void ReadAloud::spntfTime(LSoundTime time, int) {
    if (!reading_)
        return;
    position_ = time.ToFrames(rate_);
    const SpeechTrack& track = reading_->Track();
    listener_.EvReadingTime(time, LSoundTime::FromFrames(track.EstimatedEnd(), rate_));
    if (const std::optional<SpokenStretch> stretch = track.StretchAt(position_))
        listener_.EvReadingStretch(stretch->sourceBegin, stretch->sourceEnd);
}

void ReadAloud::spntfStop(int) {
    const PlayTrouble trouble = player_.Trouble();
    // What ended by itself was read as far as the engine got.
    const bool toItsEnd = reading_ && reading_->Ended().IsSignaled();
    const std::string message = toItsEnd ? reading_->Message() : "";
    const bool engineFailed = toItsEnd && reading_->Outcome() != SynthesisOutcome::kSpoken;
    EndEngine();
    listener_.EvReadingEnded(engineFailed ? "" : message,
                             trouble != PlayTrouble::kNone || engineFailed);
    if (trouble != PlayTrouble::kNone)
        ShowTrouble(trouble);
    else if (engineFailed && !message.empty())
        MessageBoxRun(parent_, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, kTitle, message.c_str(), nullptr);
}

void ReadAloud::EvTrouble(PlayTrouble) {
    player_.Stop();
}

void ReadAloud::ShowTrouble(PlayTrouble trouble) {
    if (trouble == PlayTrouble::kDeviceLost) {
        MessageBoxRun(parent_, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora", "Reading stopped",
                      "The sound device stopped working while the text was read aloud.");
        return;
    }
    MessageBoxRun(parent_, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Cannot Play", "Cannot Play",
                  "Please check that you have selected the correct sound device.");
    RunMachineCheckWithoutCard(parent_);
}
