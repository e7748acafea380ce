#include "playback/play_device.h"

#include <algorithm>
#include <string>

#include "foundation/text_buffer.h"
#include "gui/message_box.h"
#include "gui/window.h"
#include "playback/alsa_card.h"
#include "playback/mixer.h"

namespace {

// In the settings, where "default" is what stands for nothing chosen.
constexpr char kSoundServerName[] = "ALSA default";
constexpr LDB kMixerAnswers(-36);
constexpr LDB kMixerSilent(0);

void TellCannotOpenMixer(const char* name) {
    const std::string text = "Lectora could not open " + std::string(name) +
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
    isSoundServer_ = std::string_view(name) == kSoundServerName;
}

LSoundPlayDevice LSoundPlayDevice::SoundServer() {
    LSoundPlayDevice server;
    server.isSoundServer_ = true;
    return server;
}

std::string LSoundPlayDevice::AlsaName() const {
    return isSoundServer_ ? kSoundServer : CardDevice(card_);
}

void LSoundPlayDevice::GetListDeviceName(int card, char* out) {
    CopyText(out, kTextBufferSize, CardName(card));
}

void LSoundPlayDevice::GetDeviceName(char* out) const {
    if (isSoundServer_)
        CopyText(out, kTextBufferSize, kSoundServerName);
    else
        GetListDeviceName(card_, out);
}

int LSoundPlayDevice::InitVolume(bool set, long volume) const {
    const MixerResult result = set ? SetMixerVolume(AlsaName(), volume) : ProbeMixer(AlsaName());
    if (result == MixerResult::kCannotOpen)
        TellCannotOpenMixer(isSoundServer_ ? kSoundServer : CardName(card_).c_str());
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
    dialog.PDLAddString(controlId, LSoundPlayDevice::kServerLabel);
    dialog.PDLSetCurSel(
        controlId, device.IsSoundServer() ? dialog.PDLGetCount(controlId) - 1 : device.Card() + 1);
}

LSoundPlayDevice LSoundPlayDeviceChosen(const LWindow& dialog, int controlId) {
    const int entry = dialog.PDLGetCurSel(controlId);
    return entry == dialog.PDLGetCount(controlId) - 1 ? LSoundPlayDevice::SoundServer()
                                                      : LSoundPlayDevice(std::max(entry - 1, 0));
}

void LSoundPlayDeviceApply(LWindow&, int, LSoundPlayDevice) {}
