// The settings that this folder keeps.
#pragma once

#include "foundation/settings/setting.h"

// Set once the program has run.
constexpr UserSetting<bool> kInstalledSetting{"Settings", "Installed", false};

constexpr UserSetting<bool> kMaximizedSetting{"MainWindow", "Maximized", false};
constexpr UserSetting<int> kWindowLeftSetting{"MainWindow", "X", 160};
constexpr UserSetting<int> kWindowTopSetting{"MainWindow", "Y", 80};
constexpr UserSetting<int> kWindowWidthSetting{"MainWindow", "Width", 800};
constexpr UserSetting<int> kWindowHeightSetting{"MainWindow", "Height", 600};
