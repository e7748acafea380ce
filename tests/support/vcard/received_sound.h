// What one stream of a virtual card received: `stream-001.wav` beside `stream-001.log` in the
// card's folder, the next number for the next stream. The WAV file is whole after every block, also
// when the player is killed.
//
// A line of the log: CLOCK_MONOTONIC in microseconds, the event, frames received so far, frames
// played so far, and for the event "params" also rate, channels, period and buffer in frames.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "foundation/files/unique_fd.h"

class ReceivedSound {
public:
    // Starts the files of a new stream of 16-bit samples in that folder.
    void Begin(const std::string& folder, unsigned int rate, unsigned int channels);
    bool IsOpen() const { return wav_.IsOpen(); }
    // Interleaved frames, as the card got them.
    void Add(const void* frames, std::size_t bytes);
    void Log(const char* event, std::uint64_t received, std::uint64_t played,
             const std::string& more = "");

private:
    void WriteHeader();

    UniqueFd wav_;
    UniqueFd log_;
    std::uint64_t bytes_ = 0;
    unsigned int rate_ = 0;
    unsigned int channels_ = 0;
};

// CLOCK_MONOTONIC.
std::int64_t MonotonicMicroseconds();
