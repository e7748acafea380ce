// The settings that this folder reads and writes.
#pragma once

#include "foundation/setting.h"

constexpr UserSetting<int> kVoiceSetting{"Settings", "TextToSpeechVoice", 0};
constexpr UserSetting<const char*> kOpenFolderSetting{"Settings", "OpenFileDir", ""};
constexpr UserSetting<const char*> kSaveFolderSetting{"Settings", "SaveFileDir", ""};
// "0": the format is chosen while saving, by the name's extension and a dialog.
constexpr UserSetting<const char*> kSaveByDefaultSetting{"Settings", "SaveDefaultFormat", "1"};
constexpr UserSetting<const char*> kSaveFormatSetting{"Settings", "SaveFormat", "1"};  // "0" is MP3
constexpr UserSetting<const char*> kDeviceSetting{"Player", "Device", "default"};
// Whether the text box shows what is being heard.
constexpr UserSetting<bool> kFollowTextSetting{"Options", "FollowText", true};
