// Joining the encoded sections of a file, without decoding them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "formats/sound_types.h"
#include "foundation/threads/progress.h"

// An encoded section: of its frames of the codec so many are taken, behind those that are skipped
// (book_seam.h).
struct BookPart {
    static constexpr std::int64_t kToTheEnd = -1;

    std::string path;
    std::int64_t skipped = 0;
    std::int64_t taken = kToTheEnd;
    std::int64_t before = 0;  // frames in the joined file that stand before its own beginning
};

// The sound that went into the encoder.
struct SoundLength {
    std::int64_t frames = 0;
    int rate = 1;
};

struct BookJoint {
    bool isStopped = false;  // by the progress object; the file is not whole
    std::string problem;     // else empty: the file is there
};

// What one file of that type can hold, in frames of 16 bits and one channel. Books of other types
// are never that long.
std::int64_t MostFrames(SoundType type);
constexpr const char* kBookTooLong =
    "is longer than one such file can hold; a file for each chapter can be";

// Parts are MP3, Opus, ADTS (for M4B, as which it is written) or FLAC (for FLAC and WAV), of one
// rate and one channel. A part is never held in memory. MP3 and Opus files tell what players leave
// out at their beginning and end.
BookJoint JoinBook(SoundType type, const std::vector<BookPart>& parts, const SoundLength& length,
                   const std::string& path, LProgress& progress);
