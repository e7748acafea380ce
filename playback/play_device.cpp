#include "playback/play_device.h"

#include <string>

#include "foundation/files/text_buffer.h"
#include "playback/alsa_card.h"

namespace {

// In the settings, where "default" is what stands for nothing chosen.
constexpr char kSoundServerName[] = "ALSA default";
constexpr LDB kMixerAnswers(-36);
constexpr LDB kMixerSilent(0);

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

MixerResult LSoundPlayDevice::UseMixer(bool set, long volume) const {
    return set ? SetMixerVolume(AlsaName(), volume) : ProbeMixer(AlsaName());
}

int LSoundPlayDevice::InitVolume(bool set, long volume) const {
    return UseMixer(set, volume) == MixerResult::kDone ? 0 : -1;
}

MixerResult LSoundPlayDevice::SetVolume(LDB volume) const {
    return UseMixer(true, volume.Value());
}

MixerResult LSoundPlayDevice::SetVolumeStandard(LDB volume) const {
    return UseMixer(true, volume.Value());
}

MixerResult LSoundPlayDevice::SetVolumeOverride(LDB volume, LDB) const {
    return UseMixer(true, volume.Value());
}

LDB LSoundPlayDevice::GetVolumeStandard() const {
    return InitVolume(false, 0) == 0 ? kMixerAnswers : kMixerSilent;
}
