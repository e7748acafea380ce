// Where the machine-wide files and the user's home stand.
#pragma once

#include <string>
#include <string_view>

// The path as it is, or behind the folder that the environment variable LECTORA_ROOT names: tests
// and uninstalled runs touch nothing outside their own folder. absolutePath begins with "/".
std::string MachinePath(std::string_view absolutePath);

// HOME; the machine's "/opt" stands for it where HOME is unset or empty.
std::string HomeFolder();

// File of a window icon or tool-bar picture.
std::string IconPath(int number);
