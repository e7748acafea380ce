// The hotkeys' settings beside the hotkeys themselves (hot_key_store.h).
#pragma once

#include "foundation/settings/setting.h"

// Told apart by a number, those that the desktop's user refused last: they are not asked for again.
constexpr UserSetting<const char*> kRefusedShortcutsSetting{"Options", "RefusedShortcuts", ""};
