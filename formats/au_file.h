// Sun/NeXT AU files.
#pragma once

#include <cstdint>

#include "formats/raw_file_data.h"

constexpr int kAuHeaderBytes = 24;
// The header's encoding words.
constexpr std::uint32_t kAuEncodingMuLaw = 1;
constexpr std::uint32_t kAuEncodingLinear8 = 2;
constexpr std::uint32_t kAuEncodingLinear16 = 3;
constexpr std::uint32_t kAuEncodingALaw = 27;

enum LAuCodec : std::int32_t { kAuPcm16 = 0, kAuPcm8 = 1, kAuALaw = 2, kAuMuLaw = 3 };

struct LAuSettings {
    std::int32_t codec;  // an LAuCodec, or any number a settings file held
    std::int32_t sampleRate;
    std::uint8_t channels;
};

class LAuFile {
public:
    // Status 3 (malformed), 4 (cannot be opened) or 5 (an encoding other than mu-law, A-law, 8- and
    // 16-bit linear).
    static LSoundSource OpenSource(const char* path);
};

// The encoding word of a file's header, 0 of what is no AU file.
std::uint32_t AuEncodingOf(const char* path);

// An unknown codec writes 16-bit samples at 44100 Hz stereo, whatever else the settings say.
LSoundSink OpenAuSink(const char* path, LAuSettings& settings);

// Header writers; each writes kAuHeaderBytes and returns that number. The encoding word is stored
// as given.
int WriteHeaderAU(LRawFileDataSoundSinkBase& sink, bool final, std::uint32_t encoding);
int WriteHeaderAU_16PCM(LRawFileDataSoundSinkBase& sink, bool final);
int WriteHeaderAU_8PCM(LRawFileDataSoundSinkBase& sink, bool final);
int WriteHeaderAU_ALAW(LRawFileDataSoundSinkBase& sink, bool final);
int WriteHeaderAU_ULAW(LRawFileDataSoundSinkBase& sink, bool final);
