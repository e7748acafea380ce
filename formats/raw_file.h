// Headerless files in an encoding that the user names.
#pragma once

#include <cstdint>

#include "sound/sound_sink.h"
#include "sound/sound_source.h"

enum LRawCodec : std::int32_t {
    kRawDialogicAdpcm = 0,
    kRawMuLaw = 1,
    kRawALaw = 2,
    kRawPcm16 = 3,
    kRawUnsigned8 = 4,
    kRawSigned8 = 5,
    kRawPcm16BigEndian = 6,
    kRawFloat = 7,
    kRawFloatBigEndian = 8,
};

struct LRawSettings {
    std::int32_t sampleRate;
    std::uint8_t channels;
    std::int32_t codec;  // an LRawCodec, or any number a settings file held
};

class LRawFile {
public:
    // Status 4 when the file cannot be opened, 1 for a codec that is none of LRawCodec.
    static LSoundSource OpenSource(const char* path, const LRawSettings& settings);
    // Empties an existing file. Status 1 on failure and for an unknown codec.
    static LSoundSink OpenSink(const char* path, const LRawSettings& settings);

    // Dialogic ADPCM is always mono; the channel count is not looked at.
    static LSoundSource OpenSourceADPCM(const char* path, int rate, unsigned char channels);
    static LSoundSink OpenSinkADPCM(const char* path, int rate, unsigned char channels);
};
