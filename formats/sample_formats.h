// The sample encodings that sound files hold, and their conversion to and from pipeline samples
// (see sound/sound_source.h). An array of any of these types is, byte for byte, the sample data of
// a file.
//
// No conversion clips: what does not fit wraps in the integer types. Limiting is done upstream.
#pragma once

#include <cstdint>

// Linear types hold the file's bits as a native integer; the BE and RE types hold them
// byte-swapped.
struct LSF16 {
    std::uint16_t bits;
};
struct LSFBE16 {
    std::uint16_t bits;
};
struct LSFS8 {
    std::uint8_t bits;
};
struct LSFU8 {
    std::uint8_t bits;  // 128 is silence
};
struct LSFF32 {
    std::uint32_t bits;  // full scale 524288
};
struct LSFFRE32 {
    std::uint32_t bits;  // full scale 524272, unlike LSFF32: files already written depend on both
};

// G.711 on the pipeline scale. Get and Set compute one sample as the laws are written down;
// ConvertSamplesIn and ConvertSamplesOut give the same, faster.
struct LSFULAW {
    std::uint8_t bits;
    int Get() const;
    void Set(int sample);
};
struct LSFALAW {
    std::uint8_t bits;
    static constexpr int D[8] = {256,  256,  512,  1024,  // step size of each segment
                                 2048, 4096, 8192, 16384};
    int Get() const;
    void Set(int sample);
};

static_assert(sizeof(LSF16) == 2 && sizeof(LSFBE16) == 2);
static_assert(sizeof(LSFS8) == 1 && sizeof(LSFU8) == 1);
static_assert(sizeof(LSFF32) == 4 && sizeof(LSFFRE32) == 4);
static_assert(sizeof(LSFULAW) == 1 && sizeof(LSFALAW) == 1);

// Convert `samples` samples (not frames). Defined for the eight types above. A float that is not a
// number becomes 0 and one beyond the range of int its nearest end, kept off INT_MIN so that it can
// be negated.
template <typename Stored>
void ConvertSamplesIn(const Stored* in, int* out, int samples);
template <typename Stored>
void ConvertSamplesOut(const int* in, Stored* out, int samples);
template <>
void ConvertSamplesIn(const LSF16* in, int* out, int samples);
template <>
void ConvertSamplesIn(const LSFBE16* in, int* out, int samples);
template <>
void ConvertSamplesIn(const LSFS8* in, int* out, int samples);
template <>
void ConvertSamplesIn(const LSFU8* in, int* out, int samples);
template <>
void ConvertSamplesIn(const LSFF32* in, int* out, int samples);
template <>
void ConvertSamplesIn(const LSFFRE32* in, int* out, int samples);
template <>
void ConvertSamplesIn(const LSFULAW* in, int* out, int samples);
template <>
void ConvertSamplesIn(const LSFALAW* in, int* out, int samples);
template <>
void ConvertSamplesOut(const int* in, LSF16* out, int samples);
template <>
void ConvertSamplesOut(const int* in, LSFBE16* out, int samples);
template <>
void ConvertSamplesOut(const int* in, LSFS8* out, int samples);
template <>
void ConvertSamplesOut(const int* in, LSFU8* out, int samples);
template <>
void ConvertSamplesOut(const int* in, LSFF32* out, int samples);
template <>
void ConvertSamplesOut(const int* in, LSFFRE32* out, int samples);
template <>
void ConvertSamplesOut(const int* in, LSFULAW* out, int samples);
template <>
void ConvertSamplesOut(const int* in, LSFALAW* out, int samples);

// Largest absolute pipeline sample that a file of the encoding delivers.
template <typename Stored>
constexpr int kPeakOf = 524272;
template <>
inline constexpr int kPeakOf<LSFULAW> = 516096;
template <>
inline constexpr int kPeakOf<LSFALAW> = 516096;
template <>
inline constexpr int kPeakOf<LSFF32> = 1048744;
template <>
inline constexpr int kPeakOf<LSFFRE32> = 1048744;
