// The settings that this folder reads and writes.
#pragma once

#include "foundation/setting.h"

constexpr UserSetting<const char*> kOpenFolderSetting{"Settings", "OpenFileDir", ""};
constexpr UserSetting<const char*> kSaveFolderSetting{"Settings", "SaveFileDir", ""};
// "0": the format is chosen while saving, by the name's extension and a dialog.
constexpr LayeredSetting<const char*> kSaveByDefaultSetting{"Settings", "SaveDefaultFormat", "1"};
constexpr LayeredSetting<const char*> kSaveFormatSetting{"Settings", "SaveFormat",
                                                         "1"};  // "0" is MP3
// The same as the options show it: where nothing was chosen, MP3, though saving then writes WAV.
constexpr LayeredSetting<int> kSaveFormatIndexSetting{"Settings", "SaveFormat", 0};
// Whether the user was asked about a first set of hotkeys.
constexpr UserSetting<bool> kHotKeysOfferedSetting{"HotKeys", "Offered", false};
// Whether the text box shows what is being heard.
constexpr UserSetting<bool> kFollowTextSetting{"Options", "FollowText", true};
constexpr UserSetting<int> kTextSizeSetting{"Options", "TextSize", 0};  // points; 0: the theme's
// Shown unless this is exactly "0".
constexpr UserSetting<const char*> kShowCommandBarSetting{"Options", "ShowCommandBar", "1"};
// The tray tells messages apart by their numbers; the last one is kept beyond the end.
constexpr UserSetting<int> kTrayMessageSetting{"Settings", "TrayID", 0};
// Whether the user was told that a closed Lectora goes on in the background.
constexpr UserSetting<bool> kFirstExitDoneSetting{"Settings", "FirstExitDone", false};
