#include "speech/voice_manner.h"

#include <algorithm>

#include "foundation/settings/setting.h"
#include "sound/pitch.h"

namespace {

UserSetting<int> PitchSetting(const std::string& voice) {
    return {"VoicePitch", voice.c_str(), VoiceManner().pitch};
}
UserSetting<int> VolumeSetting(const std::string& voice) {
    return {"VoiceVolume", voice.c_str(), VoiceManner().volume};
}
UserSetting<const char*> VariantSetting(const std::string& voice) {
    return {"VoiceVariant", voice.c_str(), ""};
}

// What is the voice's own needs no line in the file.
template <typename Setting, typename Value>
void Keep(const Setting& setting, const Value& value, const Value& own) {
    if (value == own)
        setting.Delete();
    else
        setting.Set(value);
}

}  // namespace

VoiceManner MannerOf(const Voice& voice) {
    const std::string key = SettingsKeyOf(voice);
    return {.pitch = std::clamp(PitchSetting(key).Get(), VoiceManner::kLeastPitch,
                                VoiceManner::kMostPitch),
            .volume = std::clamp(VolumeSetting(key).Get(), VoiceManner::kLeastVolume, 100),
            .variant = VariantSetting(key).Get()};
}

std::vector<VoiceManner> MannersOfVoices() {
    std::vector<VoiceManner> manners;
    for (const Voice& each : KnownVoices())
        manners.push_back(MannerOf(each));
    return manners;
}

void KeepManner(const Voice& voice, const VoiceManner& manner) {
    const std::string key = SettingsKeyOf(voice);
    Keep(PitchSetting(key), manner.pitch, VoiceManner().pitch);
    Keep(VolumeSetting(key), manner.volume, VoiceManner().volume);
    Keep(VariantSetting(key), manner.variant, std::string());
}

LSoundSource InManner(const LSoundSource& sound, const VoiceManner& manner) {
    return AtPitchAndVolume(sound, manner.pitch, manner.volume);
}
