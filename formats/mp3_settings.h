// The user's choices for MP3 files.
#pragma once

#include <cstdint>

struct LMp3EncodeSettings {
    bool constantBitRate = true;
    std::uint16_t cbrBitRate = 128;  // kbit/s, as are the two below
    bool highQuality = true;
    std::uint16_t vbrMinBitRate = 32;
    std::uint16_t vbrMaxBitRate = 128;
    std::uint8_t vbrQuality = 4;  // 0 highest to 9 lowest
    bool errorProtection = false;
    std::uint8_t channelMode = 1;  // 0 stereo, 1 joint, 2 forced, 3 mono
};

// Section "MP3Encoder": the user's own values, where there are none those set for the machine, then
// the defaults above.
LMp3EncodeSettings LoadMp3Settings();
// The same as the encoder can bear them: a maximum above 160 raises a minimum below 32 to 32.
LMp3EncodeSettings LoadMp3SettingsForSaving();
void SaveMp3Settings(const LMp3EncodeSettings& settings);  // all eight keys, per user
