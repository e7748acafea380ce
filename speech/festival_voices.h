// What is known of the voices that can be installed for Festival.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "speech/voice_table.h"

// As people know the voice, with language and charset.
Voice FestivalVoice(const std::string& name);

// The voices' names in the engine's answer, which stand one a line when they are many; none when it
// is not whole.
std::vector<std::string> FestivalVoiceNames(std::string_view answer);

// The package without which the voice is silent though it is listed, when that is not installed;
// empty otherwise.
std::string MissingCompanion(std::string_view name);
