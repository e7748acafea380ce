#include "playback/mixer.h"

#include <alsa/asoundlib.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "playback/alsa_card.h"

namespace {

constexpr long kBottomDecibels = -36;
constexpr long kDecibelRange = 48;  // up to +12

struct ControlCloser {
    void operator()(snd_ctl_t* control) const { snd_ctl_close(control); }
};
struct MixerCloser {
    void operator()(snd_mixer_t* mixer) const { snd_mixer_close(mixer); }
};
struct CardInfoFree {
    void operator()(snd_ctl_card_info_t* info) const { snd_ctl_card_info_free(info); }
};
using Control = std::unique_ptr<snd_ctl_t, ControlCloser>;
using Mixer = std::unique_ptr<snd_mixer_t, MixerCloser>;
using CardInfo = std::unique_ptr<snd_ctl_card_info_t, CardInfoFree>;

MixerResult OpenMixer(const std::string& device, Mixer& mixer) {
    QuietAlsa();
    snd_mixer_t* opened = nullptr;
    if (snd_mixer_open(&opened, 0) < 0)
        return MixerResult::kCannotOpen;
    mixer.reset(opened);
    const bool ready = snd_mixer_attach(opened, device.c_str()) >= 0 &&
                       snd_mixer_selem_register(opened, nullptr, nullptr) >= 0 &&
                       snd_mixer_load(opened) >= 0;
    return ready ? MixerResult::kDone : MixerResult::kFailed;
}

template <typename Action>
MixerResult ForEachElement(const std::string& device, Action action) {
    Mixer mixer;
    const MixerResult result = OpenMixer(device, mixer);
    if (result != MixerResult::kDone)
        return result;
    for (snd_mixer_elem_t* element = snd_mixer_first_elem(mixer.get()); element != nullptr;
         element = snd_mixer_elem_next(element)) {
        if (snd_mixer_elem_get_type(element) == SND_MIXER_ELEM_SIMPLE &&
            std::strcmp(snd_mixer_selem_get_name(element), "Capture") != 0)
            action(element);
    }
    return MixerResult::kDone;
}

}  // namespace

std::string CardName(int card) {
    QuietAlsa();
    snd_ctl_t* opened = nullptr;
    if (snd_ctl_open(&opened, CardDevice(card).c_str(), 0) < 0)
        return {};
    const Control control(opened);
    snd_ctl_card_info_t* allocated = nullptr;
    if (snd_ctl_card_info_malloc(&allocated) < 0)
        return {};
    const CardInfo info(allocated);
    if (snd_ctl_card_info(control.get(), info.get()) < 0)
        return {};
    return snd_ctl_card_info_get_name(info.get());
}

long MixerRawVolume(long decibels, long minimum, long maximum) {
    const long range = maximum - minimum;
    const long raw = (decibels - kBottomDecibels) * range / kDecibelRange;
    return std::min(std::max(raw, 0L), std::max(range, 0L));
}

MixerResult SetMixerVolume(const std::string& device, long decibels) {
    return ForEachElement(device, [decibels](snd_mixer_elem_t* element) {
        long minimum = 0;
        long maximum = 0;
        snd_mixer_selem_get_playback_volume_range(element, &minimum, &maximum);
        snd_mixer_selem_set_playback_volume_all(element,
                                                MixerRawVolume(decibels, minimum, maximum));
    });
}

MixerResult ProbeMixer(const std::string& device) {
    return ForEachElement(device, [](snd_mixer_elem_t* element) {
        long volume = 0;
        snd_mixer_selem_get_playback_volume(element, SND_MIXER_SCHN_FRONT_LEFT, &volume);
    });
}
