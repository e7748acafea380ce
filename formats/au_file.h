// Sun/NeXT AU files.
#pragma once

#include <cstdint>

#include "formats/raw_file_data.h"

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

// An unknown codec writes 16-bit samples at 44100 Hz stereo, whatever else the settings say.
LSoundSink OpenAuSink(const char* path, LAuSettings& settings);

// Header writers; each writes 24 bytes and returns 24. The encoding word is stored as given.
int WriteHeaderAU(LRawFileDataSoundSinkBase& sink, bool final, std::uint32_t encoding);
int WriteHeaderAU_16PCM(LRawFileDataSoundSinkBase& sink, bool final);
int WriteHeaderAU_8PCM(LRawFileDataSoundSinkBase& sink, bool final);
int WriteHeaderAU_ALAW(LRawFileDataSoundSinkBase& sink, bool final);
int WriteHeaderAU_ULAW(LRawFileDataSoundSinkBase& sink, bool final);
