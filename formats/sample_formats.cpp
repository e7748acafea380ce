#include "formats/sample_formats.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

static_assert(std::endian::native == std::endian::little,
              "stored types assume a little-endian machine");

const int LSFALAW::D[8] = {256, 256, 512, 1024, 2048, 4096, 8192, 16384};

namespace {

constexpr int kMaxMantissa = 15;

// Segment 5 lies one 14-bit step (64) below G.711 in both tables: recordings made so far depend on
// it.
constexpr std::array<std::uint32_t, 8> kMuLawBases = {0,     1984,  6080,   14272,
                                                      30656, 63360, 128960, 260032};
constexpr std::array<int, 8> kMuLawOrigins = {0, 2112, 6336, 14784, 31680, 65408, 133056, 268224};
constexpr std::array<std::uint32_t, 8> kALawBases = {0,     4096,  8192,   16384,
                                                     32768, 65536, 131072, 262144};
constexpr std::array<int, 8> kALawOrigins = {128, 4224, 8448, 16896, 33792, 67584, 135168, 270336};
constexpr std::array<int, 8> kALawShifts = {8, 8, 9, 10, 11, 12, 13, 14};  // log2 of LSFALAW::D

constexpr std::uint32_t Magnitude(int sample) {
    const auto bits = static_cast<std::uint32_t>(sample);
    return sample < 0 ? 0 - bits : bits;
}

constexpr unsigned SegmentOf(std::uint32_t magnitude, const std::array<std::uint32_t, 8>& bases) {
    unsigned segment = 7;
    while (magnitude < bases[segment])
        --segment;
    return segment;
}

constexpr std::uint8_t EncodeMuLaw(int sample) {
    const std::uint32_t magnitude = Magnitude(sample);
    const unsigned segment = SegmentOf(magnitude, kMuLawBases);
    const unsigned mantissa =
        std::min<unsigned>((magnitude - kMuLawBases[segment]) >> (segment + 7), kMaxMantissa);
    const unsigned sign = sample < 0 ? 0x80 : 0;
    return static_cast<std::uint8_t>(~(sign | segment << 4 | mantissa));
}

constexpr int DecodeMuLaw(std::uint8_t byte) {
    const auto x = static_cast<std::uint8_t>(~byte);
    const unsigned segment = (x >> 4) & 7U;
    const int magnitude = ((x & 15) << (segment + 7)) + kMuLawOrigins[segment];
    return (x & 0x80) != 0 ? -magnitude : magnitude;
}

constexpr std::uint8_t EncodeALaw(int sample) {
    const std::uint32_t magnitude = Magnitude(sample);
    const unsigned segment = SegmentOf(magnitude, kALawBases);
    const unsigned mantissa =
        std::min<unsigned>((magnitude - kALawBases[segment]) >> kALawShifts[segment], kMaxMantissa);
    const unsigned sign = sample < 0 ? 0 : 0x80;
    return static_cast<std::uint8_t>((segment << 4 | sign | mantissa) ^ 0x55);
}

constexpr int DecodeALaw(std::uint8_t byte) {
    const auto x = static_cast<std::uint8_t>(byte ^ 0x55);
    const unsigned segment = (x >> 4) & 7U;
    const int magnitude = ((x & 15) << kALawShifts[segment]) + kALawOrigins[segment];
    return (x & 0x80) != 0 ? magnitude : -magnitude;
}

// Every threshold and step of both laws is a multiple of 64, so the encoders depend on |s| / 64 and
// the sign alone: a key of 16 bits, saturated far above full scale. Negative samples have the keys
// -1 and down.
constexpr int kKeyShift = 6;

inline std::int16_t KeyOf(int sample) {
    const int sign = sample >> 31;
    const std::uint32_t key = Magnitude(sample) >> kKeyShift;
    return static_cast<std::int16_t>(static_cast<int>(std::min(key, 32767U)) ^ sign);
}

struct EncodeTable {
    std::array<std::uint8_t, 65536> bytes;

    explicit EncodeTable(std::uint8_t (*encode)(int)) {
        for (int key = 0; key < 32768; ++key) {
            bytes[static_cast<std::size_t>(key)] = encode(key << kKeyShift);
            bytes[static_cast<std::size_t>(65535 - key)] = encode(-((key << kKeyShift) + 1));
        }
    }
};

struct DecodeTable {
    std::array<int, 256> samples;

    constexpr explicit DecodeTable(int (*decode)(std::uint8_t)) : samples() {
        for (unsigned byte = 0; byte < 256; ++byte)
            samples[byte] = decode(static_cast<std::uint8_t>(byte));
    }
};

constexpr DecodeTable kMuLawSamples(DecodeMuLaw);
constexpr DecodeTable kALawSamples(DecodeALaw);

// Keys are made for a run of samples at a time, a loop the compiler vectorises, and looked up in a
// second one.
template <typename Stored>
void EncodeByTable(const EncodeTable& table, const int* __restrict in, Stored* __restrict out,
                   int samples) {
    constexpr int kRun = 512;
    std::uint16_t keys[kRun];
    for (int done = 0; done < samples; done += kRun) {
        const int run = std::min(kRun, samples - done);
        for (int i = 0; i < run; ++i)
            keys[i] = static_cast<std::uint16_t>(KeyOf(in[done + i]));
        for (int i = 0; i < run; ++i)
            out[done + i].bits = table.bytes[keys[i]];
    }
}

template <typename Stored>
void DecodeByTable(const DecodeTable& table, const Stored* __restrict in, int* __restrict out,
                   int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = table.samples[in[i].bits];
}

constexpr std::uint16_t Swapped16(std::uint16_t value) {
    return static_cast<std::uint16_t>(value << 8 | value >> 8);
}

constexpr std::uint32_t Swapped32(std::uint32_t value) {
    return value << 24 | (value & 0xFF00) << 8 | (value >> 8 & 0xFF00) | value >> 24;
}

int FromWord(std::uint16_t bits) {
    return static_cast<std::int16_t>(bits) * 16;
}

// The additions wrap, as the narrowing does.
int RoundedShift(int sample, int shift) {
    const auto sum = static_cast<std::uint32_t>(sample) + (1U << (shift - 1));
    return static_cast<std::int32_t>(sum) >> shift;
}

std::uint16_t ToWord(int sample) {
    return static_cast<std::uint16_t>(RoundedShift(sample, 4));
}

int FromFloat(std::uint32_t bits, float fullScale) {
    constexpr float kLargest = 2147483520.0F;  // the largest float below 2^31
    const float value = std::bit_cast<float>(bits) * fullScale;
    const float number = value == value ? value : 0.0F;
    return static_cast<int>(std::max(std::min(number, kLargest), -kLargest));
}

}  // namespace

int LSFULAW::Get() const {
    return DecodeMuLaw(bits);
}
void LSFULAW::Set(int sample) {
    bits = EncodeMuLaw(sample);
}
int LSFALAW::Get() const {
    return DecodeALaw(bits);
}
void LSFALAW::Set(int sample) {
    bits = EncodeALaw(sample);
}

template <>
void ConvertSamplesIn(const LSF16* __restrict in, int* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = FromWord(in[i].bits);
}

template <>
void ConvertSamplesIn(const LSFBE16* __restrict in, int* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = FromWord(Swapped16(in[i].bits));
}

template <>
void ConvertSamplesIn(const LSFS8* __restrict in, int* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = static_cast<std::int8_t>(in[i].bits) * 4096;
}

template <>
void ConvertSamplesIn(const LSFU8* __restrict in, int* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = (in[i].bits - 128) * 4096;
}

template <>
void ConvertSamplesIn(const LSFF32* __restrict in, int* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = FromFloat(in[i].bits, 524288.0F);
}

template <>
void ConvertSamplesIn(const LSFFRE32* __restrict in, int* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = FromFloat(Swapped32(in[i].bits), 524272.0F);
}

template <>
void ConvertSamplesIn(const LSFULAW* in, int* out, int samples) {
    DecodeByTable(kMuLawSamples, in, out, samples);
}

template <>
void ConvertSamplesIn(const LSFALAW* in, int* out, int samples) {
    DecodeByTable(kALawSamples, in, out, samples);
}

template <>
void ConvertSamplesOut(const int* __restrict in, LSF16* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i].bits = ToWord(in[i]);
}

template <>
void ConvertSamplesOut(const int* __restrict in, LSFBE16* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i].bits = Swapped16(ToWord(in[i]));
}

template <>
void ConvertSamplesOut(const int* __restrict in, LSFS8* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i].bits = static_cast<std::uint8_t>(RoundedShift(in[i], 12));
}

template <>
void ConvertSamplesOut(const int* __restrict in, LSFU8* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i].bits = static_cast<std::uint8_t>(RoundedShift(in[i], 12) - 128);
}

template <>
void ConvertSamplesOut(const int* __restrict in, LSFF32* __restrict out, int samples) {
    constexpr float kUnit = 1.0F / 524288.0F;
    for (int i = 0; i < samples; ++i)
        out[i].bits = std::bit_cast<std::uint32_t>(static_cast<float>(in[i]) * kUnit);
}

template <>
void ConvertSamplesOut(const int* __restrict in, LSFFRE32* __restrict out, int samples) {
    for (int i = 0; i < samples; ++i)
        out[i].bits =
            Swapped32(std::bit_cast<std::uint32_t>(static_cast<float>(in[i]) / 524272.0F));
}

template <>
void ConvertSamplesOut(const int* in, LSFULAW* out, int samples) {
    static const EncodeTable kTable(EncodeMuLaw);
    EncodeByTable(kTable, in, out, samples);
}

template <>
void ConvertSamplesOut(const int* in, LSFALAW* out, int samples) {
    static const EncodeTable kTable(EncodeALaw);
    EncodeByTable(kTable, in, out, samples);
}
