#if defined(__x86_64__)
#include <immintrin.h>

#include "sound/kernels_generic.h"
#include "sound/kernels_x86.h"

namespace {

__m256i Load(const std::int16_t* samples) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(samples));
}

__m256i Multiply(__m256i samples, const std::int16_t* row) {
    return _mm256_madd_epi16(samples, _mm256_load_si256(reinterpret_cast<const __m256i*>(row)));
}

__m128i AddSaturated(__m128i a, __m128i b) {
    const __m128i sum = _mm_add_epi32(a, b);
    const __m128i overflow = _mm_andnot_si128(_mm_xor_si128(a, b), _mm_xor_si128(a, sum));
    const __m128i limit = _mm_xor_si128(_mm_srai_epi32(a, 31), _mm_set1_epi32(INT32_MAX));
    return _mm_castps_si128(
        _mm_blendv_ps(_mm_castsi128_ps(sum), _mm_castsi128_ps(limit), _mm_castsi128_ps(overflow)));
}

// A window's sums without the bias.
struct WindowSums {
    __m256i partial;  // eight, the two halves alternating in pairs
    HalvedBias bias;
};

WindowSums SumWindow(const std::int16_t* window, const std::int16_t* row) {
    const __m256i first =
        _mm256_add_epi32(Multiply(Load(window), row), Multiply(Load(window + 16), row + 16));
    const __m256i second = _mm256_add_epi32(Multiply(Load(window + 31), row + 32),
                                            Multiply(Load(window + 47), row + 48));
    return {_mm256_hadd_epi32(first, second), BiasOf(window)};
}

// Four frames' results in order.
__m128i Finish(const WindowSums& a, const WindowSums& b, const WindowSums& c, const WindowSums& d,
               __m128i rounding, __m128i shift) {
    const __m256i ab = _mm256_hadd_epi32(a.partial, b.partial);
    const __m256i cd = _mm256_hadd_epi32(c.partial, d.partial);
    const __m256i low = _mm256_permute2x128_si256(ab, cd, 0x20);
    const __m256i high = _mm256_permute2x128_si256(ab, cd, 0x31);
    // (low + high) >> 1 without an overflow in between.
    const __m256i sums = _mm256_add_epi32(_mm256_and_si256(low, high),
                                          _mm256_srai_epi32(_mm256_xor_si256(low, high), 1));
    const __m256i bias =
        _mm256_setr_epi32(a.bias.first, a.bias.second, b.bias.first, b.bias.second, c.bias.first,
                          c.bias.second, d.bias.first, d.bias.second);
    const __m256 halves = _mm256_castsi256_ps(_mm256_add_epi32(sums, bias));
    const __m128 front = _mm256_castps256_ps128(halves);
    const __m128 back = _mm256_extractf128_ps(halves, 1);
    const __m128i first = _mm_castps_si128(_mm_shuffle_ps(front, back, _MM_SHUFFLE(2, 0, 2, 0)));
    const __m128i second = _mm_castps_si128(_mm_shuffle_ps(front, back, _MM_SHUFFLE(3, 1, 3, 1)));
    return _mm_sra_epi32(AddSaturated(first, _mm_add_epi32(second, rounding)), shift);
}

void Store(__m128i results, int* out, int stride) {
    if (stride == 1) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), results);
        return;
    }
    out[0] = _mm_cvtsi128_si32(results);
    out[stride] = _mm_extract_epi32(results, 1);
    out[2 * stride] = _mm_extract_epi32(results, 2);
    out[3 * stride] = _mm_extract_epi32(results, 3);
}

void Avx2Resample(const LNarrowSpan& span) {
    const __m128i rounding = _mm_set1_epi32(span.rounding);
    const __m128i shift = _mm_cvtsi32_si128(span.outputShift);
    WindowStep step{span.phase};
    const auto next = [&] {
        const WindowSums sums =
            SumWindow(span.history + step.offset, span.rows + step.phase * kPackedRowSize);
        step.Advance(span);
        return sums;
    };
    int* out = span.out;
    int frame = 0;
    for (; frame + 4 <= span.frames; frame += 4, out += 4 * span.outStride) {
        const WindowSums a = next();
        const WindowSums b = next();
        const WindowSums c = next();
        const WindowSums d = next();
        Store(Finish(a, b, c, d, rounding, shift), out, span.outStride);
    }
    for (; frame < span.frames; ++frame, out += span.outStride) {
        const WindowSums last = next();
        *out = _mm_cvtsi128_si32(Finish(last, last, last, last, rounding, shift));
    }
}

}  // namespace

const LSoundKernels kAvx2Kernels = {"avx2",        GenericPeak,         Avx2Resample,
                                    GenericNarrow, GenericMonoToStereo, GenericStereoToLeft,
                                    GenericGain};
#endif
