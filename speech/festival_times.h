// How Festival tells at which times it speaks its words.
#pragma once

#include <string>
#include <string_view>

// What its converter's command ends with to leave them in that file (spoken_times.h). Its sound
// stays the same, also when it cannot.
std::string FestivalTimesOption(std::string_view timesPath);
