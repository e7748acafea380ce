// The format record of WAVE files, as kept in memory, in a fmt chunk and in the user's
// "WavCodec.wff".
#pragma once

#include <cstddef>
#include <cstdint>

// Frames a second: the most that WAVE readers accept, and the least that sound is converted to.
constexpr int kHighestRate = 196000;
constexpr int kLowestWrittenRate = 1000;

constexpr std::uint16_t kWaveTagPcm = 1;
constexpr std::uint16_t kWaveTagALaw = 6;
constexpr std::uint16_t kWaveTagMuLaw = 7;
constexpr std::uint16_t kWaveTagGsm610 = 49;

// A fmt chunk as the machine holds it; on disk its first 18 bytes, little-endian, followed by
// cbSize more.
struct WAVEFORMATEX {
    std::uint16_t wFormatTag;
    std::uint16_t nChannels;
    std::uint32_t nSamplesPerSec;
    std::uint32_t nAvgBytesPerSec;
    std::uint16_t nBlockAlign;
    std::uint16_t wBitsPerSample;
    std::uint16_t cbSize;
};
constexpr std::size_t kWaveFormatExBytes = 18;
static_assert(offsetof(WAVEFORMATEX, cbSize) == kWaveFormatExBytes - 2);

// A format record with room for format-specific bytes. Travels and is stored whole.
struct LWaveFileFormat {
    // 16-bit PCM, or what name says, whatever its case: "PCM8", "ALAW", "ULAW", "MULAW".
    LWaveFileFormat(int rate, unsigned char channelCount, const char* name);

    bool TestFormatSupportedRecord() const { return true; }

    std::uint16_t tag;
    std::uint16_t channels;
    std::uint32_t samplesPerSecond;
    std::uint32_t averageBytesPerSecond;
    std::uint16_t blockAlign;
    std::uint16_t bitsPerSample;
    std::uint16_t extraSize = 0;
    std::uint8_t extra[1010] = {};
};
static_assert(sizeof(LWaveFileFormat) == 1028);
static_assert(offsetof(LWaveFileFormat, bitsPerSample) == 14);
static_assert(offsetof(LWaveFileFormat, extra) == kWaveFormatExBytes);

// The user's default format, "WavCodec.wff" in the home folder's ".quillon/lectora". Load overlays
// what the file holds on the record and leaves the rest as it was; a result that the writers cannot
// do is not taken, which the log tells. Save makes the folders and is
// false when the file is not whole on disk.
void LoadDefaultWaveFormat(LWaveFileFormat& format);
bool SaveDefaultWaveFormat(const LWaveFileFormat& format);
