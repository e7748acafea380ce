#include "playback/play_device.h"

#include <string>

#include "foundation/text_buffer.h"
#include "gui/message_box.h"
#include "gui/window.h"
#include "playback/mixer.h"

namespace {

constexpr LDB kMixerAnswers(-36);
constexpr LDB kMixerSilent(0);

void TellCannotOpenMixer(int card) {
    const std::string text = "Lectora could not open " + CardName(card) +
                             ". Check to see if another application is using your sound device.";
    MessageBoxRun(nullptr, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora", text.c_str(), nullptr);
}

}  // namespace

LSoundPlayDevice::LSoundPlayDevice(const char* name) {
    // Cards that are not there have an empty name too.
    if (*name == '\0')
        return;
    for (int card = 0; card < kMaxCards; ++card) {
        if (CardName(card) == name) {
            card_ = card;
            return;
        }
    }
}

void LSoundPlayDevice::GetListDeviceName(int card, char* out) {
    CopyText(out, kTextBufferSize, CardName(card));
}

void LSoundPlayDevice::GetDeviceName(char* out) const {
    GetListDeviceName(card_, out);
}

int LSoundPlayDevice::InitVolume(bool set, long volume) const {
    const MixerResult result = set ? SetMixerVolume(card_, volume) : ProbeMixer(card_);
    if (result == MixerResult::kCannotOpen)
        TellCannotOpenMixer(card_);
    return result == MixerResult::kDone ? 0 : -1;
}

void LSoundPlayDevice::SetVolume(LDB volume) const {
    InitVolume(true, volume.Value());
}

void LSoundPlayDevice::SetVolumeStandard(LDB volume) const {
    InitVolume(true, volume.Value());
}

void LSoundPlayDevice::SetVolumeOverride(LDB volume, LDB) const {
    InitVolume(true, volume.Value());
}

LDB LSoundPlayDevice::GetVolumeStandard() const {
    return InitVolume(false, 0) == 0 ? kMixerAnswers : kMixerSilent;
}

void LSoundPlayDeviceInit(LWindow& dialog, int controlId, LSoundPlayDevice device) {
    dialog.PDLAddString(controlId, "Default Sound Device");
    for (int card = 0; card < kMaxCards; ++card)
        if (const std::string name = CardName(card); !name.empty())
            dialog.PDLAddString(controlId, name.c_str());
    dialog.PDLSetCurSel(controlId, device.Card() + 1);
}

void LSoundPlayDeviceApply(LWindow&, int, LSoundPlayDevice) {}
