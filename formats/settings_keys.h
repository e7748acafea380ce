// The settings that this folder and its dialogs keep.
#pragma once

#include "foundation/settings/setting.h"

constexpr UserSetting<int> kWavFormatPresetSetting{"Settings", "WavFormatPreset", 0};

constexpr UserSetting<int> kAuCodecSetting{"AuEncoder", "CodecIndex", 0};
constexpr UserSetting<int> kAuRateSetting{"AuEncoder", "SampleRate", 44100};
constexpr UserSetting<int> kAuChannelsSetting{"AuEncoder", "Channels", 2};

constexpr UserSetting<int> kAiffRateSetting{"AIFFEncode", "SampleRate", 44100};
constexpr UserSetting<int> kAiffChannelsSetting{"AIFFEncode", "Channels", 2};

// Raw files are described in the section that the caller of the dialog names.
constexpr UserSetting<int> RawRateSetting(const char* section) {
    return {section, "SampleRate", 44100};
}
constexpr UserSetting<int> RawChannelsSetting(const char* section) {
    return {section, "Channels", 2};
}
constexpr UserSetting<int> RawCodecSetting(const char* section) {
    return {section, "Codec", 3};
}

// That of files which are saved.
constexpr const char* kRawSavingSection = "RawEncoder";

// Looked for in the user's settings, then in the machine's, so as text (mp3_settings.h).
constexpr UserSetting<const char*> kMp3ConstantSetting{"MP3Encoder", "ConstantBitRate", ""};
constexpr UserSetting<const char*> kMp3BitRateSetting{"MP3Encoder", "CBRBitRate", ""};
constexpr UserSetting<const char*> kMp3HighQualitySetting{"MP3Encoder", "HighQuality", ""};
constexpr UserSetting<const char*> kMp3LowestSetting{"MP3Encoder", "VBRMinBitRate", ""};
constexpr UserSetting<const char*> kMp3HighestSetting{"MP3Encoder", "VBRMaxBitRate", ""};
constexpr UserSetting<const char*> kMp3QualitySetting{"MP3Encoder", "VBRQuality", ""};
constexpr UserSetting<const char*> kMp3ProtectionSetting{"MP3Encoder", "ErrorProtection", ""};
constexpr UserSetting<const char*> kMp3ChannelModeSetting{"MP3Encoder", "ChannelMode", ""};
