#include "app/read_aloud.h"

#include "app/settings_keys.h"
#include "app/speech_file.h"
#include "formats/wave_file.h"
#include "gui/message_box.h"
#include "speech/dialogs/synthesis_dialog.h"
#include "speech/synthesis.h"

namespace {

constexpr int kPlayerId = 1;

LSoundPlayDevice StoredDevice() {
    return LSoundPlayDevice(kDeviceSetting.Get().c_str());
}

}  // namespace

ReadAloud::ReadAloud(ReadAloudListener& listener)
    : listener_(listener), player_(this, kPlayerId, LSoundPlayDevice()) {
    player_.SetTroubleHandler([this](PlayTrouble trouble) { EvTrouble(trouble); });
}

ReadAloud::~ReadAloud() {
    player_.Stop();
}

void ReadAloud::Start(GtkWidget* parent, const char* text, int voice) {
    Stop();
    parent_ = parent;
    const std::string path = SpeechFilePath();
    LTTS request;
    request.text = text;
    request.outputPath = path.c_str();
    request.voice = voice;
    if (!ProcessDialogRun(parent, request))
        return;
    const LSoundSource source = LWaveFile::OpenSource(path.c_str());
    if (source->Status() != SoundStatus::kGood) {
        MessageBoxRun(parent_, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Synthesize Voice",
                      SynthesisMessage(SynthesisOutcome::kNoSound).c_str(), "");
        return;
    }
    length_ = LSoundTime::FromFrames(source->GetEndSample(), source->SampleRate());
    // The card is looked up at each reading: it may have been plugged in since the last.
    player_.SetDevice(StoredDevice());
    if (!player_.Start(source))
        ShowTrouble(PlayTrouble::kCannotOpen);
}

void ReadAloud::Stop() {
    player_.Stop();
}

void ReadAloud::spntfPlay(int) {
    listener_.EvReadingStarted();
}

void ReadAloud::spntfTime(LSoundTime time, int) {
    listener_.EvReadingTime(time, length_);
}

void ReadAloud::spntfStop(int) {
    const PlayTrouble trouble = player_.Trouble();
    listener_.EvReadingEnded(trouble != PlayTrouble::kNone);
    if (trouble != PlayTrouble::kNone)
        ShowTrouble(trouble);
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
}
