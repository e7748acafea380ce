// Dialogic (OKI) ADPCM: 4 bits a sample, two samples a byte, the earlier one in the high nibble.
#pragma once

#include <cstdint>

// Codec state and tables. The predictor leaks 1/64 a sample in both directions: this system's
// addition to the standard, which keeps an encoder and a decoder that met a lost nibble from
// drifting apart. A step is half of the standard's, so other decoders play these streams 6 dB
// louder, and theirs are that much softer here.
class LVox {
public:
    static constexpr int StepTable[49] = {
        16,  17,  19,  21,  23,  25,  28,  31,  34,  37,  41,   45,   50,   55,   60,  66,  73,
        80,  88,  97,  107, 118, 130, 143, 157, 173, 190, 209,  230,  253,  279,  307, 337, 371,
        408, 449, 494, 544, 598, 658, 724, 796, 876, 963, 1060, 1166, 1282, 1411, 1552};
    // The rest by code: sign bit 8, magnitude bits 4, 2, 1.
    static constexpr int StepAdjustTable[16] = {-1, -1, -1, -1, 2, 4, 6, 8,
                                                -1, -1, -1, -1, 2, 4, 6, 8};
    static constexpr int CodeTable[16] = {16,  48,  80,  112,  144,  176,  208,  240,
                                          -16, -48, -80, -112, -144, -176, -208, -240};

    // Two samples for each byte.
    void DecodeBytes(const std::uint8_t* bytes, int count, int* samples);
    void EncodeBytes(const int* samples, std::uint8_t* bytes, int count);

    int DecodeCode(unsigned code);  // 0 to 15
    unsigned EncodeSample(int sample);

private:
    std::int32_t stepIndex_ = 0;  // 0 to 48
    std::int32_t predicted_ = 0;  // pipeline scale
};
