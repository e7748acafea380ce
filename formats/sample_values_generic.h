// One sample to or from each stored form, for the loops of sample_kernels_generic.h alone: a linker
// could take a vector copy of a function that others include as well.
#pragma once

#include <cstring>

#include "formats/sample_kernels.h"

namespace {

inline std::uint16_t Swapped16(std::uint16_t value) {
    return static_cast<std::uint16_t>(value << 8 | value >> 8);
}

inline std::uint32_t Swapped32(std::uint32_t value) {
    return value << 24 | (value & 0xFF00) << 8 | (value >> 8 & 0xFF00) | value >> 24;
}

inline std::uint32_t BitsOf(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

inline float FloatOf(std::uint32_t bits) {
    float value;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

inline int FromWord(std::uint16_t bits) {
    return static_cast<std::int16_t>(bits) * 16;
}

// The addition wraps, as the narrowing does.
inline int RoundedShift(int sample, int shift) {
    const auto sum = static_cast<std::uint32_t>(sample) + (1U << (shift - 1));
    return static_cast<std::int32_t>(sum) >> shift;
}

inline std::uint16_t ToWord(int sample) {
    return static_cast<std::uint16_t>(RoundedShift(sample, 4));
}

inline int FromFloat(std::uint32_t bits, float fullScale) {
    constexpr float kLargest = 2147483520.0F;  // the largest float below 2^31
    const float value = FloatOf(bits) * fullScale;
    const float number = value == value ? value : 0.0F;
    const float low = number < kLargest ? number : kLargest;
    return static_cast<int>(low > -kLargest ? low : -kLargest);
}

// G.711 without branches or tables. A law's thresholds double from segment to segment once an
// offset is added, so the exponent of a float and the top four bits of its mantissa are the code.
constexpr int kCodeShift = 19;
constexpr int kExponentBias = 127 << 4;

inline std::uint32_t MagnitudeOf(int sample) {
    const auto sign = static_cast<std::uint32_t>(sample >> 31);
    return (static_cast<std::uint32_t>(sample) ^ sign) - sign;
}

inline int CodeOf(int position) {
    return static_cast<int>(BitsOf(static_cast<float>(position)) >> kCodeShift) - kExponentBias;
}

inline std::uint8_t MuLawOf(int sample) {
    constexpr int kLargest = 8158;  // in 14-bit steps, of the last segment
    const int steps = static_cast<int>(MagnitudeOf(sample) >> 6);
    const int key = steps < kLargest ? steps : kLargest;
    // G.711 adds 33 throughout. Segment 0 counts from 0 here, and segment 5, 990 to 2013, begins
    // one step early. The shifts are -1 where the comparison holds: as bools they would not
    // vectorise.
    const int isAboveFirst = (30 - key) >> 31;
    const int isInFifth = ((989 - key) & (key - 2014)) >> 31;
    const int offset = 32 - isAboveFirst - isInFifth;
    const int code = CodeOf(key + offset) - (5 << 4);
    return static_cast<std::uint8_t>(~(code | (sample >> 31 & 0x80)));
}

inline std::uint8_t ALawOf(int sample) {
    constexpr int kLargest = 2047;
    const int steps = static_cast<int>(MagnitudeOf(sample) >> 8);
    const int key = steps < kLargest ? steps : kLargest;
    // Segments 0 and 1 have the same step.
    const int isFirst = key < 16 ? 16 : 0;
    const int code = CodeOf(key + isFirst) - (3 << 4) - isFirst;
    return static_cast<std::uint8_t>((code | (~(sample >> 31) & 0x80)) ^ 0x55);
}

}  // namespace
