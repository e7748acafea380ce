// Joining the encoded files of chapters into one, without decoding them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "formats/sound_types.h"
#include "foundation/threads/progress.h"

struct BookJoint {
    bool isStopped = false;  // by the progress object; the file is not whole
    std::string problem;     // else empty: the file is there
    int rate = 1;
    std::vector<std::int64_t> frames;  // of each part, at that rate
};

// What one file of that type can hold, in frames of 16 bits and one channel. Books of other types
// are never that long.
std::int64_t MostFrames(SoundType type);
constexpr const char* kBookTooLong =
    "is longer than one such file can hold; a file for each chapter can be";

// Parts are MP3, Opus, ADTS (for M4B, as which it is written) or FLAC (for FLAC and WAV), of one
// rate and one channel. A part is never held in memory.
BookJoint JoinBook(SoundType type, const std::vector<std::string>& parts, const std::string& path,
                   LProgress& progress);
