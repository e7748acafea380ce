// The command line of lectora-convert.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/sound_input.h"
#include "tools/sound_output.h"

constexpr const char* kConvertProgram = "lectora-convert";
constexpr const char* kStandardStream = "-";  // as the name of a file: input or output

// Part of a sound, in milliseconds.
struct TimeSpan {
    long long start = 0;
    std::optional<long long> end;  // the end of the sound
};

struct ConvertOptions {
    bool isInfo = false;
    bool overwrite = false;
    OutputChoice output;
    bool hasOutputType = false;
    RawReading raw;
    std::optional<TimeSpan> span;
    std::vector<std::string> files;  // input and output, or all whose information is asked for
};

// Nothing when the program has to do something: the options. Otherwise the exit status, all having
// been said.
std::optional<int> ParseConvertOptions(int argc, char* const* argv, ConvertOptions& options);
