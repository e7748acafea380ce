// What playback keeps in the settings.
#pragma once

#include <string>

#include "foundation/settings/setting.h"

constexpr UserSetting<const char*> kPlayerDevice{"Player", "Device", "default"};
constexpr UserSetting<int> kPlayerVolume{"Player", "VolumeDB", 0};  // decibels

// Percent of the voice's own speed; `key` is the voice's name and must outlive the constant.
constexpr UserSetting<int> PlayerTempo(const char* key) {
    return {"PlayerTempo", key, 100};
}
