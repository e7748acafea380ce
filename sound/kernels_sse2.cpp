#if defined(__x86_64__)
#include <emmintrin.h>

#include "sound/kernels_generic.h"
#include "sound/kernels_x86.h"

namespace {

__m128i Load(const std::int16_t* samples) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples));
}

__m128i Multiply(const std::int16_t* samples, const std::int16_t* row) {
    return _mm_madd_epi16(Load(samples), _mm_load_si128(reinterpret_cast<const __m128i*>(row)));
}

// (a + b) >> 1 without an overflow in between.
__m128i Average(__m128i a, __m128i b) {
    return _mm_add_epi32(_mm_and_si128(a, b), _mm_srai_epi32(_mm_xor_si128(a, b), 1));
}

__m128i AddSaturated(__m128i a, __m128i b) {
    const __m128i sum = _mm_add_epi32(a, b);
    const __m128i overflow =
        _mm_srai_epi32(_mm_andnot_si128(_mm_xor_si128(a, b), _mm_xor_si128(a, sum)), 31);
    const __m128i limit = _mm_xor_si128(_mm_srai_epi32(a, 31), _mm_set1_epi32(INT32_MAX));
    return _mm_or_si128(_mm_and_si128(overflow, limit), _mm_andnot_si128(overflow, sum));
}

struct HalfSums {
    __m128i first;
    __m128i second;
    HalvedBias bias;
};

// Four partial sums of each half.
HalfSums SumWindow(const std::int16_t* window, const std::int16_t* row) {
    HalfSums sums{Multiply(window, row), Multiply(window + 31, row + 32), BiasOf(window)};
    for (int i = 8; i < kFirstHalfTaps; i += 8) {
        sums.first = _mm_add_epi32(sums.first, Multiply(window + i, row + i));
        sums.second = _mm_add_epi32(sums.second, Multiply(window + 31 + i, row + 32 + i));
    }
    return sums;
}

// Two frames: [first, second] sums of both, halved and added; the results are in elements 0 and 2.
__m128i FinishPair(const HalfSums& a, const HalfSums& b, __m128i rounding, __m128i shift) {
    const __m128i a01 =
        _mm_add_epi32(_mm_unpacklo_epi32(a.first, a.second), _mm_unpackhi_epi32(a.first, a.second));
    const __m128i b01 =
        _mm_add_epi32(_mm_unpacklo_epi32(b.first, b.second), _mm_unpackhi_epi32(b.first, b.second));
    const __m128i sums = Average(_mm_unpacklo_epi64(a01, b01), _mm_unpackhi_epi64(a01, b01));
    const __m128i bias = _mm_setr_epi32(a.bias.first, a.bias.second, b.bias.first, b.bias.second);
    const __m128i halves = _mm_add_epi32(sums, bias);
    const __m128i second = _mm_add_epi32(_mm_srli_epi64(halves, 32), rounding);
    return _mm_sra_epi32(AddSaturated(halves, second), shift);
}

void Sse2Resample(const LNarrowSpan& span) {
    const __m128i rounding = _mm_set1_epi32(span.rounding);
    const __m128i shift = _mm_cvtsi32_si128(span.outputShift);
    WindowStep step{span.phase};
    const auto next = [&] {
        const HalfSums sums =
            SumWindow(span.history + step.offset, span.rows + step.phase * kPackedRowSize);
        step.Advance(span);
        return sums;
    };
    int* out = span.out;
    int frame = 0;
    for (; frame + 2 <= span.frames; frame += 2, out += 2 * span.outStride) {
        const HalfSums a = next();
        const HalfSums b = next();
        const __m128i result = FinishPair(a, b, rounding, shift);
        out[0] = _mm_cvtsi128_si32(result);
        out[span.outStride] = _mm_cvtsi128_si32(_mm_srli_si128(result, 8));
    }
    if (frame < span.frames) {
        const HalfSums last = next();
        *out = _mm_cvtsi128_si32(FinishPair(last, last, rounding, shift));
    }
}

}  // namespace

const LSoundKernels kSse2Kernels = {"sse2",        GenericPeak,         Sse2Resample,
                                    GenericNarrow, GenericMonoToStereo, GenericStereoToLeft,
                                    GenericGain};
#endif
