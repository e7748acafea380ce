// The settings that this folder keeps.
#pragma once

#include "foundation/settings/setting.h"

// Text, because an empty value counts as missing, and missing is on for the machine and off for a
// user.
constexpr MachineSetting<const char*> kAutoRunForAllSetting{"Settings", "AutoRun", ""};
constexpr UserSetting<const char*> kAutoRunForUserSetting{"Settings", "AutoRun", ""};
// Index in the options' list: 0 every user, 1 this user only.
constexpr UserSetting<int> kRunModeSetting{"Settings", "RunMode", 0};
