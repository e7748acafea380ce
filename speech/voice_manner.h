// How a voice speaks, beside its speed: what the user has chosen for it, kept with the voice.
#pragma once

#include <string>
#include <vector>

#include "sound/sound_source.h"
#include "speech/voice_table.h"

struct VoiceManner {
    static constexpr int kLeastPitch = 60;
    static constexpr int kMostPitch = 165;
    static constexpr int kLeastVolume = 10;

    int pitch = 100;           // percent of its own
    int volume = 100;          // likewise; never louder, where its sound would be clipped
    std::string variant = {};  // another speaker that the engine makes of it (voice_variants.h)

    bool operator==(const VoiceManner&) const = default;
};

// Any thread.
VoiceManner MannerOf(const Voice& voice);
std::vector<VoiceManner> MannersOfVoices();  // by their index
void KeepManner(const Voice& voice, const VoiceManner& manner);

// The sound of an engine that knows no manners. As long as before; in memory, when it is changed.
LSoundSource InManner(const LSoundSource& sound, const VoiceManner& manner);
