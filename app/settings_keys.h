// The settings that this folder reads and writes.
#pragma once

#include "foundation/settings/setting.h"

constexpr UserSetting<const char*> kOpenFolderSetting{"Settings", "OpenFileDir", ""};
constexpr UserSetting<const char*> kSaveFolderSetting{"Settings", "SaveFileDir", ""};
// "0": the format is chosen while saving, by the name's extension and a dialog.
constexpr LayeredSetting<const char*> kSaveByDefaultSetting{"Settings", "SaveDefaultFormat", "1"};
constexpr LayeredSetting<const char*> kSaveFormatSetting{"Settings", "SaveFormat",
                                                         "1"};  // "0" is MP3
// Whether the user was asked about a first set of hotkeys.
constexpr UserSetting<bool> kHotKeysOfferedSetting{"HotKeys", "Offered", false};
// Whether the text box shows what is being heard.
constexpr UserSetting<bool> kFollowTextSetting{"Options", "FollowText", true};
// The colours of that (app/text/highlight_colors.h).
constexpr UserSetting<const char*> kHighlightSetting{"Options", "Highlight", "usual"};
// Whether the word is marked in it, too.
constexpr UserSetting<bool> kMarkWordsSetting{"Options", "MarkWords", true};
// Whether the text of the window is there again at the next start.
constexpr UserSetting<bool> kKeepTextSetting{"Options", "KeepText", true};
constexpr UserSetting<int> kTextSizeSetting{"Options", "TextSize", 0};  // points; 0: the theme's
// Shown unless this is exactly "0".
constexpr UserSetting<const char*> kShowCommandBarSetting{"Options", "ShowCommandBar", "1"};
// Whether the contents of documents that have any are shown beside their text.
constexpr UserSetting<bool> kShowContentsSetting{"Options", "ShowContents", true};
// The tray tells messages apart by their numbers; the last one is kept beyond the end.
constexpr UserSetting<int> kTrayMessageSetting{"Settings", "TrayID", 0};
// Whether the user was told that a closed Lectora goes on in the background.
constexpr UserSetting<bool> kFirstExitDoneSetting{"Settings", "FirstExitDone", false};

// Not kept when the settings cannot hold it: cut, it would be another folder.
inline void KeepFolder(const UserSetting<const char*>& setting, const std::string& folder) {
    if (folder.size() < kTextBufferSize)
        setting.Set(folder);
}
