// What a sound file holds, told on standard output.
#pragma once

#include <string>

#include "tools/sound_input.h"

// Prints type, codec, rate, channels, frames and time, or the description of a dictation file. Why
// that was not possible, or empty; without the path.
std::string PrintSoundInfo(const std::string& path, const RawReading& raw);
