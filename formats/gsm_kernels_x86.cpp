// Vector forms of the GSM kernels for x86: SSE2, which every 64-bit processor has, and SSSE3 for
// the synthesis filter.
#include "formats/gsm_kernels.h"

#if defined(__SSE2__)

#include <emmintrin.h>
#include <tmmintrin.h>

#include <algorithm>

namespace {

using gsm::kFrameSamples;
using gsm::kMaxLag;
using gsm::kMinLag;
using gsm::kOrder;
using gsm::kSubFrameSamples;

__m128i Load(const std::int16_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}
void Store(std::int16_t* to, __m128i value) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), value);
}

std::int32_t SumLanes(__m128i four) {
    four = _mm_add_epi32(four, _mm_shuffle_epi32(four, _MM_SHUFFLE(1, 0, 3, 2)));
    four = _mm_add_epi32(four, _mm_shuffle_epi32(four, _MM_SHUFFLE(2, 3, 0, 1)));
    return _mm_cvtsi128_si32(four);
}

// (a * b + 16384) >> 15 in each lane; a product of -32768 by itself does not occur.
__m128i MultR(__m128i a, __m128i b) {
    const __m128i high = _mm_mulhi_epi16(a, b);
    const __m128i low = _mm_srli_epi16(_mm_mullo_epi16(a, b), 14);
    return _mm_add_epi16(_mm_add_epi16(high, high), _mm_avg_epu16(low, _mm_setzero_si128()));
}

void AutoCorrelate(const std::int16_t* samples, std::int32_t* sums) {
    // Zeros in front let every lag run over the whole frame.
    alignas(16) std::int16_t padded[8 + kFrameSamples];
    std::fill_n(padded, 8, std::int16_t{0});
    std::copy_n(samples, kFrameSamples, padded + 8);
    for (int lag = 0; lag <= kOrder; lag++) {
        __m128i sum = _mm_setzero_si128();
        for (int i = 8; i < 8 + kFrameSamples; i += 8)
            sum = _mm_add_epi32(sum, _mm_madd_epi16(Load(padded + i), Load(padded + i - lag)));
        sums[lag] = SumLanes(sum) * 2;
    }
}

// Words with all bits set in lanes 0 to n - 1, for n from 0 to 8: Load(kLaneMasks + 8 - n).
constexpr std::int16_t kLaneMasks[16] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0};
__m128i LowLanes(int count) {
    return Load(kLaneMasks + 8 - count);
}
__m128i Select(__m128i mask, __m128i ones, __m128i zeros) {
    return _mm_or_si128(_mm_and_si128(mask, ones), _mm_andnot_si128(mask, zeros));
}
// Moves every lane up by one and puts a word into lane 0.
__m128i ShiftIn(__m128i lanes, std::int16_t word) {
    return _mm_insert_epi16(_mm_slli_si128(lanes, 2), word, 0);
}

// All eight lattice stages at once, stage i in lane i working on the sample i steps back. A stage
// takes its forward value from the stage before it one step ago and its memory from the stage
// before it two steps ago, so a frame takes 160 + 7 steps; lanes that have no sample yet or any
// more compute words that nothing uses.
class LatticeWave {
public:
    LatticeWave(const LGSMSegmentCoefficients& coefficients, std::int16_t* memory)
        : coefficients_(coefficients), memory_(memory), saved_(Load(memory)) {}

    // The first eight steps take a stage's first memory word from the frame before.
    std::int16_t StepIn(int step, std::int16_t input, __m128i stageCoefficients) {
        const __m128i fresh = _mm_xor_si128(LowLanes(step), LowLanes(step + 1));
        pendingMemory_ = Select(fresh, saved_, pendingMemory_);
        return Step(input, stageCoefficients);
    }

    std::int16_t Step(std::int16_t input, __m128i stageCoefficients) {
        const __m128i forward = ShiftIn(forward_, input);
        const __m128i backward = _mm_adds_epi16(pendingMemory_, MultR(stageCoefficients, forward));
        forward_ = _mm_adds_epi16(forward, MultR(stageCoefficients, pendingMemory_));
        pendingMemory_ = ShiftIn(lastBackward_, input);
        lastBackward_ = backward;
        return static_cast<std::int16_t>(_mm_extract_epi16(forward_, 7));
    }

    // Coefficients for a step: a stage changes over when the first sample of the segment reaches
    // it.
    __m128i Coefficients(int segment, int stepsIntoSegment) const {
        const __m128i current = Load(coefficients_.values[segment]);
        if (stepsIntoSegment >= 7 || segment == 0)
            return current;
        return Select(LowLanes(stepsIntoSegment + 1), current,
                      Load(coefficients_.values[segment - 1]));
    }

    // After the step that took sample 158 + stage: that stage's input memory for the next frame.
    void KeepMemory(int stage) {
        alignas(16) std::int16_t words[8];
        Store(words, lastBackward_);
        memory_[stage] = words[stage - 1];
    }

private:
    const LGSMSegmentCoefficients& coefficients_;
    std::int16_t* memory_;
    __m128i saved_;
    __m128i forward_ = _mm_setzero_si128();
    __m128i pendingMemory_ = _mm_setzero_si128();  // lane i: memory of stage i at the coming step
    __m128i lastBackward_ = _mm_setzero_si128();
};

void Analyse(const LGSMSegmentCoefficients& coefficients, std::int16_t* memory,
             const std::int16_t* in, std::int16_t* out) {
    LatticeWave wave(coefficients, memory);
    int step = 0;
    for (; step < kOrder; step++)
        out[0] = wave.StepIn(step, in[step], wave.Coefficients(0, step));
    int start = 0;
    for (int segment = 0; segment < 4; segment++) {
        const int blendEnd = std::min(start + kOrder, kGsmSegmentEnds[segment]);
        for (; step < blendEnd; step++)
            out[step - 7] = wave.Step(in[step], wave.Coefficients(segment, step - start));
        const __m128i steady = Load(coefficients.values[segment]);
        for (; step < kGsmSegmentEnds[segment]; step++)
            out[step - 7] = wave.Step(in[step], steady);
        start = kGsmSegmentEnds[segment];
    }
    const __m128i last = Load(coefficients.values[3]);
    memory[0] = in[kFrameSamples - 1];
    for (int stage = 1; stage < kOrder; stage++, step++) {
        wave.KeepMemory(stage);
        out[step - 7] = wave.Step(0, last);
    }
}

// One sample at a time in lane 0, where saturation is free. The chain through the memory, not the
// number of operations, bounds the speed of this filter.
__attribute__((target("ssse3"))) void SynthesiseSsse3(const LGSMSegmentCoefficients& coefficients,
                                                      std::int16_t* memory, const std::int16_t* in,
                                                      std::int16_t* out) {
    __m128i v[kOrder + 1];
    for (int i = 0; i <= kOrder; i++)
        v[i] = _mm_cvtsi32_si128(memory[i]);
    int sample = 0;
    for (int segment = 0; segment < 4; segment++) {
        __m128i r[kOrder];
        for (int i = 0; i < kOrder; i++)
            r[i] = _mm_cvtsi32_si128(coefficients.values[segment][i]);
        for (; sample < kGsmSegmentEnds[segment]; sample++) {
            __m128i value = _mm_cvtsi32_si128(in[sample]);
#pragma GCC unroll 8
            for (int i = kOrder - 1; i >= 0; i--) {
                value = _mm_subs_epi16(value, _mm_mulhrs_epi16(r[i], v[i]));
                v[i + 1] = _mm_adds_epi16(v[i], _mm_mulhrs_epi16(r[i], value));
            }
            v[0] = value;
            out[sample] = static_cast<std::int16_t>(_mm_cvtsi128_si32(value));
        }
    }
    for (int i = 0; i <= kOrder; i++)
        memory[i] = static_cast<std::int16_t>(_mm_cvtsi128_si32(v[i]));
}

std::int32_t Correlate(const __m128i (&weighted)[5], const std::int16_t* delayed) {
    __m128i sum = _mm_madd_epi16(weighted[0], Load(delayed));
    for (int i = 1; i < 5; i++)
        sum = _mm_add_epi32(sum, _mm_madd_epi16(weighted[i], Load(delayed + 8 * i)));
    return SumLanes(sum);
}

int SearchLag(const std::int16_t* weighted, const std::int16_t* past, std::int32_t& maximum) {
    static_assert(kSubFrameSamples == 5 * 8);
    __m128i samples[5];
    for (int i = 0; i < 5; i++)
        samples[i] = Load(weighted + 8 * i);
    int best = kMinLag;
    std::int32_t top = 0;
    for (int lag = kMinLag; lag <= kMaxLag; lag++) {
        const std::int32_t sum = Correlate(samples, past + kMaxLag - lag);
        if (sum > top) {
            top = sum;
            best = lag;
        }
    }
    maximum = top * 2;
    return best;
}

// Two taps a multiplication: neighbouring samples interleaved, times a pair of the response.
void Weigh(const std::int16_t* in, std::int16_t* out) {
    constexpr struct {
        int at;
        std::int16_t first, second;
    } kPairs[] = {{0, -134, -374}, {3, 2054, 5741}, {5, 8192, 5741}, {7, 2054, 0}, {9, -374, -134}};
    for (int i = 0; i < kSubFrameSamples; i += 8) {
        __m128i low = _mm_set1_epi32(4096);
        __m128i high = low;
        for (const auto& pair : kPairs) {
            const __m128i response = _mm_set1_epi32((pair.second * 65536) | (pair.first & 0xFFFF));
            const __m128i even = Load(in + i + pair.at);
            const __m128i odd = Load(in + i + pair.at + 1);
            low = _mm_add_epi32(low, _mm_madd_epi16(_mm_unpacklo_epi16(even, odd), response));
            high = _mm_add_epi32(high, _mm_madd_epi16(_mm_unpackhi_epi16(even, odd), response));
        }
        Store(out + i, _mm_packs_epi32(_mm_srai_epi32(low, 13), _mm_srai_epi32(high, 13)));
    }
}

}  // namespace

const LGSMKernels& GsmFastKernels() {
    static const LGSMKernels kKernels{
        AutoCorrelate, Analyse,
        __builtin_cpu_supports("ssse3") ? SynthesiseSsse3 : GsmPlainKernels().synthesise, SearchLag,
        Weigh};
    return kKernels;
}

#else

const LGSMKernels& GsmFastKernels() {
    return GsmPlainKernels();
}

#endif
