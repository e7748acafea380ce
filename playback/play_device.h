// Which sound card plays, and its volume.
#pragma once

#include <string>

#include "playback/mixer.h"
#include "sound/level.h"

// A card number or the sound server, passed by value. Cards are always addressed as "hw:N": rates
// and channel counts are converted here, never by plug-ins of the system. The sound server is
// ALSA's "default". Any thread; whoever has a window asks and sets the mixer on another one
// (mixer_setter.h), since a server that stands still keeps its caller.
class LSoundPlayDevice {
public:
    LSoundPlayDevice() = default;  // card 0
    explicit LSoundPlayDevice(int card) : card_(card) {}
    // The first card of exactly that name, else the sound server when the name is its, else card 0.
    explicit LSoundPlayDevice(const char* name);

    static LSoundPlayDevice SoundServer();
    static constexpr const char* kServerLabel = "The desktop's sound server";

    int Card() const { return card_; }  // 0 for the sound server
    bool IsSoundServer() const { return isSoundServer_; }
    std::string AlsaName() const;

    // The card's name, or an empty text; out holds 260 characters.
    static void GetListDeviceName(int card, char* out);
    void GetDeviceName(char* out) const;

    // Whoever has a user in front of him tells of a mixer that cannot be opened
    // (LSoundPlayDeviceTell).
    int InitVolume(bool set, long volume) const;  // 0, or -1 when the mixer does not answer
    MixerResult SetVolume(LDB volume) const;
    MixerResult SetVolumeStandard(LDB volume) const;
    MixerResult SetVolumeOverride(LDB volume, LDB ignored) const;
    // -36 dB when the mixer answers, else 0 dB. The level read is not reported: the panel works
    // with its stored volume.
    LDB GetVolumeStandard() const;

private:
    MixerResult UseMixer(bool set, long volume) const;

    int card_ = 0;
    bool isSoundServer_ = false;
};
