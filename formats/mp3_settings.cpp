#include "formats/mp3_settings.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "foundation/settings.h"

namespace {

constexpr const char* kSection = "MP3Encoder";

std::string Value(const char* key) {
    const std::string own = LUserSettingGet(kSection, key);
    return own.empty() ? LSettingGet(kSection, key) : own;
}

void Load(const char* key, bool& flag) {
    const std::string value = Value(key);
    if (!value.empty())
        flag = value[0] != '0';
}

template <typename Number>
void Load(const char* key, Number& number) {
    const std::string value = Value(key);
    if (!value.empty()) {
        const long limit = Number(~Number{0});
        number =
            static_cast<Number>(std::clamp(std::strtol(value.c_str(), nullptr, 10), 0L, limit));
    }
}

}  // namespace

LMp3EncodeSettings LoadMp3Settings() {
    LMp3EncodeSettings settings;
    Load("ConstantBitRate", settings.constantBitRate);
    Load("CBRBitRate", settings.cbrBitRate);
    Load("HighQuality", settings.highQuality);
    Load("VBRMinBitRate", settings.vbrMinBitRate);
    Load("VBRMaxBitRate", settings.vbrMaxBitRate);
    Load("VBRQuality", settings.vbrQuality);
    Load("ErrorProtection", settings.errorProtection);
    Load("ChannelMode", settings.channelMode);
    return settings;
}

LMp3EncodeSettings LoadMp3SettingsForSaving() {
    LMp3EncodeSettings settings = LoadMp3Settings();
    if (settings.vbrMaxBitRate > 160)
        settings.vbrMinBitRate = std::max<std::uint16_t>(settings.vbrMinBitRate, 32);
    return settings;
}

void SaveMp3Settings(const LMp3EncodeSettings& settings) {
    LUserSettingSetBool(kSection, "ConstantBitRate", settings.constantBitRate);
    LUserSettingSetInt(kSection, "CBRBitRate", settings.cbrBitRate);
    LUserSettingSetBool(kSection, "HighQuality", settings.highQuality);
    LUserSettingSetInt(kSection, "VBRMinBitRate", settings.vbrMinBitRate);
    LUserSettingSetInt(kSection, "VBRMaxBitRate", settings.vbrMaxBitRate);
    LUserSettingSetInt(kSection, "VBRQuality", settings.vbrQuality);
    LUserSettingSetBool(kSection, "ErrorProtection", settings.errorProtection);
    LUserSettingSetInt(kSection, "ChannelMode", settings.channelMode);
}
