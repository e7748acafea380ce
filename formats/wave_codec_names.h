// Names of the registered WAVE format tags.
#pragma once

#include <cstddef>
#include <cstdint>

struct WaveCodec {
    std::uint16_t tag;
    const char* name;
};

constexpr std::size_t kWaveCodecCount = 182;
constexpr std::size_t kWaveCodecNameSize = 68;  // longest name and its terminator

// Sorted by tag; row 0 is "Microsoft Unknown Wave Format".
extern const WaveCodec WaveCodecs[kWaveCodecCount];

// The first row with the tag, row 0's name when there is none.
const char* WaveCodecName(std::uint16_t tag);
