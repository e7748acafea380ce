// Where speech is kept between the engine and whoever plays or saves it.
#pragma once

#include <string>

// "speech.wav" in the home folder, which reading and saving share; the next run overwrites it.
std::string SpeechFilePath();
