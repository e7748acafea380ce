// The volume of a card, set so that nobody waits for one that stands still.
#pragma once

#include <memory>

#include "playback/play_device.h"
#include "sound/level.h"

// Each object sets one volume at a time, on a thread of its own. GUI thread.
class MixerSetter {
public:
    MixerSetter();
    // A volume that is still being set is set all the same; nobody waits for it.
    ~MixerSetter();
    MixerSetter(const MixerSetter&) = delete;
    MixerSetter& operator=(const MixerSetter&) = delete;

    // Waits for the answer a tenth of a second at most, and not at all while an earlier volume is
    // still being set: then this one follows it, in place of any other that waits.
    MixerResult Set(LSoundPlayDevice device, LDB volume);

private:
    struct Wishes;
    class SettingThread;

    const std::shared_ptr<Wishes> wishes_;
};
