#include "formats/mp3_settings.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "formats/settings_keys.h"

namespace {

using Key = UserSetting<const char*>;

std::string Value(const Key& key) {
    const std::string own = key.Get();
    return own.empty() ? MachineSetting<const char*>{key.section, key.key, ""}.Get() : own;
}

void Load(const Key& key, bool& flag) {
    const std::string value = Value(key);
    if (!value.empty())
        flag = value[0] != '0';
}

template <typename Number>
void Load(const Key& key, Number& number) {
    const std::string value = Value(key);
    if (!value.empty()) {
        const long limit = Number(~Number{0});
        number =
            static_cast<Number>(std::clamp(std::strtol(value.c_str(), nullptr, 10), 0L, limit));
    }
}

template <typename Number>
void Save(const Key& key, const Number& number) {
    key.Set(std::to_string(static_cast<int>(number)));
}

// Calls access(key, field) for each setting.
template <typename Settings, typename Access>
void ForEachSetting(Settings& settings, Access access) {
    access(kMp3ConstantSetting, settings.constantBitRate);
    access(kMp3BitRateSetting, settings.cbrBitRate);
    access(kMp3HighQualitySetting, settings.highQuality);
    access(kMp3LowestSetting, settings.vbrMinBitRate);
    access(kMp3HighestSetting, settings.vbrMaxBitRate);
    access(kMp3QualitySetting, settings.vbrQuality);
    access(kMp3ProtectionSetting, settings.errorProtection);
    access(kMp3ChannelModeSetting, settings.channelMode);
}

}  // namespace

LMp3EncodeSettings LoadMp3Settings() {
    LMp3EncodeSettings settings;
    ForEachSetting(settings, [](const Key& key, auto& field) { Load(key, field); });
    return settings;
}

LMp3EncodeSettings LoadMp3SettingsForSaving() {
    LMp3EncodeSettings settings = LoadMp3Settings();
    if (settings.vbrMaxBitRate > 160)
        settings.vbrMinBitRate = std::max<std::uint16_t>(settings.vbrMinBitRate, 32);
    return settings;
}

void SaveMp3Settings(const LMp3EncodeSettings& settings) {
    ForEachSetting(settings, [](const Key& key, const auto& field) { Save(key, field); });
}
