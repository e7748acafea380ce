// What playback keeps in the settings.
#pragma once

#include <string>

#include "foundation/settings/setting.h"

constexpr UserSetting<const char*> kPlayerDevice{"Player", "Device", "default"};
constexpr UserSetting<int> kPlayerVolume{"Player", "VolumeDB", 0};  // decibels

// Whether the player stands in the window whose text it plays, and where it stands outside; without
// a left edge, beside that window.
constexpr UserSetting<bool> kPlayerDocked{"Player", "Docked", true};
constexpr int kNoPlace = -100000;
constexpr UserSetting<int> kPlayerLeft{"Player", "X", kNoPlace};
constexpr UserSetting<int> kPlayerTop{"Player", "Y", kNoPlace};

// Percent of the voice's own speed; `key` is the voice's name and must outlive the constant.
constexpr UserSetting<int> PlayerTempo(const char* key) {
    return {"PlayerTempo", key, 100};
}
