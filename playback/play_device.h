// Which sound card plays, and its volume.
#pragma once

#include <string>

#include "sound/level.h"

class LWindow;

// A card number or the sound server, passed by value. Cards are always addressed as "hw:N": rates
// and channel counts are converted here, never by plug-ins of the system. The sound server is
// ALSA's "default". GUI thread, but for what says that any thread may call it.
class LSoundPlayDevice {
public:
    LSoundPlayDevice() = default;  // card 0
    explicit LSoundPlayDevice(int card) : card_(card) {}
    // The first card of exactly that name, else the sound server when the name is its, else card 0.
    explicit LSoundPlayDevice(const char* name);

    static LSoundPlayDevice SoundServer();
    static constexpr const char* kServerLabel = "The desktop's sound server";

    // Any thread.
    int Card() const { return card_; }  // 0 for the sound server
    bool IsSoundServer() const { return isSoundServer_; }
    std::string AlsaName() const;

    // The card's name, or an empty text; out holds 260 characters.
    static void GetListDeviceName(int card, char* out);
    void GetDeviceName(char* out) const;

    // 0, or -1 when the mixer does not answer; a mixer that cannot be opened is told to the user in
    // a box.
    int InitVolume(bool set, long volume) const;
    void SetVolume(LDB volume) const;
    void SetVolumeStandard(LDB volume) const;
    void SetVolumeOverride(LDB volume, LDB ignored) const;
    // -36 dB when the mixer answers, else 0 dB. The level read is not reported: the panel works
    // with its stored volume.
    LDB GetVolumeStandard() const;

private:
    int card_ = 0;
    bool isSoundServer_ = false;
};

// Fills the pull-down list with "Default Sound Device", the name of every card that has one, and
// the sound server. Selects that, or entry card + 1, which takes for granted that cards are
// numbered without gaps.
void LSoundPlayDeviceInit(LWindow& dialog, int controlId, LSoundPlayDevice device);
// What is selected there. "Default Sound Device" is card 0.
LSoundPlayDevice LSoundPlayDeviceChosen(const LWindow& dialog, int controlId);
// Does nothing: the options dialog reads the chosen entry itself.
void LSoundPlayDeviceApply(LWindow& dialog, int controlId, LSoundPlayDevice device);
