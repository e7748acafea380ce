#include "formats/sample_formats.h"

#include <array>
#include <bit>

#include "formats/sample_kernels.h"

static_assert(std::endian::native == std::endian::little,
              "stored types assume a little-endian machine");

namespace {

// Where each segment begins to decode. Segment 5 of mu-law lies one 14-bit step (64) below G.711,
// as it does when encoding: recordings made so far depend on both.
constexpr std::array<int, 8> kMuLawOrigins = {0, 2112, 6336, 14784, 31680, 65408, 133056, 268224};
constexpr std::array<int, 8> kALawOrigins = {128, 4224, 8448, 16896, 33792, 67584, 135168, 270336};

constexpr int DecodeMuLaw(std::uint8_t byte) {
    const auto x = static_cast<std::uint8_t>(~byte);
    const unsigned segment = (x >> 4) & 7U;
    const int magnitude = ((x & 15) << (segment + 7)) + kMuLawOrigins[segment];
    return (x & 0x80) != 0 ? -magnitude : magnitude;
}

constexpr int DecodeALaw(std::uint8_t byte) {
    const auto x = static_cast<std::uint8_t>(byte ^ 0x55);
    const unsigned segment = (x >> 4) & 7U;
    const int magnitude = (x & 15) * LSFALAW::D[segment] + kALawOrigins[segment];
    return (x & 0x80) != 0 ? magnitude : -magnitude;
}

struct DecodeTable {
    std::array<int, 256> samples;

    constexpr explicit DecodeTable(int (*decode)(std::uint8_t)) : samples() {
        for (unsigned byte = 0; byte < 256; ++byte)
            samples[byte] = decode(static_cast<std::uint8_t>(byte));
    }
};

constexpr DecodeTable kMuLawSamples(DecodeMuLaw);
constexpr DecodeTable kALawSamples(DecodeALaw);

template <typename Stored>
void DecodeByTable(const DecodeTable& table, const Stored* __restrict in, int* __restrict out,
                   int samples) {
    for (int i = 0; i < samples; ++i)
        out[i] = table.samples[in[i].bits];
}

}  // namespace

int LSFULAW::Get() const {
    return DecodeMuLaw(bits);
}
void LSFULAW::Set(int sample) {
    SampleKernels().outMuLaw(&sample, this, 1);
}
int LSFALAW::Get() const {
    return DecodeALaw(bits);
}
void LSFALAW::Set(int sample) {
    SampleKernels().outALaw(&sample, this, 1);
}

template <>
void ConvertSamplesIn(const LSF16* in, int* out, int samples) {
    SampleKernels().in16(in, out, samples);
}

template <>
void ConvertSamplesIn(const LSFBE16* in, int* out, int samples) {
    SampleKernels().inBE16(in, out, samples);
}

template <>
void ConvertSamplesIn(const LSFS8* in, int* out, int samples) {
    SampleKernels().inS8(in, out, samples);
}

template <>
void ConvertSamplesIn(const LSFU8* in, int* out, int samples) {
    SampleKernels().inU8(in, out, samples);
}

template <>
void ConvertSamplesIn(const LSFF32* in, int* out, int samples) {
    SampleKernels().inF32(in, out, samples);
}

template <>
void ConvertSamplesIn(const LSFFRE32* in, int* out, int samples) {
    SampleKernels().inRE32(in, out, samples);
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
void ConvertSamplesOut(const int* in, LSF16* out, int samples) {
    SampleKernels().out16(in, out, samples);
}

template <>
void ConvertSamplesOut(const int* in, LSFBE16* out, int samples) {
    SampleKernels().outBE16(in, out, samples);
}

template <>
void ConvertSamplesOut(const int* in, LSFS8* out, int samples) {
    SampleKernels().outS8(in, out, samples);
}

template <>
void ConvertSamplesOut(const int* in, LSFU8* out, int samples) {
    SampleKernels().outU8(in, out, samples);
}

template <>
void ConvertSamplesOut(const int* in, LSFF32* out, int samples) {
    SampleKernels().outF32(in, out, samples);
}

template <>
void ConvertSamplesOut(const int* in, LSFFRE32* out, int samples) {
    SampleKernels().outRE32(in, out, samples);
}

template <>
void ConvertSamplesOut(const int* in, LSFULAW* out, int samples) {
    SampleKernels().outMuLaw(in, out, samples);
}

template <>
void ConvertSamplesOut(const int* in, LSFALAW* out, int samples) {
    SampleKernels().outALaw(in, out, samples);
}
