// The command line of lectora-say.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/sound_types.h"

struct SayJob {
    std::string text;  // path; empty for standard input
    std::string sound;
    SoundType type = SoundType::kWav;
};

struct SayOptions {
    bool listsVoices = false;
    bool overwrite = false;
    std::optional<std::string> voice;  // name, or index in the list
    std::vector<SayJob> jobs;
};

// Nothing when the program has to do something: the options. Otherwise the exit status, all having
// been said.
std::optional<int> ParseSayOptions(int argc, char* const* argv, SayOptions& options);
