// Where settings and logs stand; made by whoever writes first, by nobody who only asks.
#pragma once

#include <string>

std::string UserSettingsFolder();     // "$HOME/.quillon/lectora"
std::string MachineSettingsFolder();  // "/opt/quillon/lectora/etc", of the machine's root
