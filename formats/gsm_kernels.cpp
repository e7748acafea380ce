#include "formats/gsm_kernels.h"

namespace {

using gsm::kFrameSamples;
using gsm::kMaxLag;
using gsm::kMinLag;
using gsm::kOrder;
using gsm::kSubFrameSamples;

void AutoCorrelate(const std::int16_t* samples, std::int32_t* sums) {
    for (int lag = 0; lag <= kOrder; lag++) {
        std::int32_t sum = 0;
        for (int i = lag; i < kFrameSamples; i++)
            sum += samples[i] * samples[i - lag];
        sums[lag] = sum * 2;
    }
}

void Analyse(const LGSMSegmentCoefficients& coefficients, std::int16_t* memory,
             const std::int16_t* in, std::int16_t* out) {
    int sample = 0;
    for (int segment = 0; segment < 4; segment++) {
        const std::int16_t* r = coefficients.values[segment];
        for (; sample < kGsmSegmentEnds[segment]; sample++) {
            std::int16_t forward = in[sample];
            std::int16_t saved = forward;
            for (int i = 0; i < kOrder; i++) {
                const std::int16_t backward = gsm::Add(memory[i], gsm::MultR(r[i], forward));
                forward = gsm::Add(forward, gsm::MultR(r[i], memory[i]));
                memory[i] = saved;
                saved = backward;
            }
            out[sample] = forward;
        }
    }
}

void Synthesise(const LGSMSegmentCoefficients& coefficients, std::int16_t* memory,
                const std::int16_t* in, std::int16_t* out) {
    int sample = 0;
    for (int segment = 0; segment < 4; segment++) {
        const std::int16_t* r = coefficients.values[segment];
        for (; sample < kGsmSegmentEnds[segment]; sample++) {
            std::int16_t value = in[sample];
            for (int i = kOrder - 1; i >= 0; i--) {
                value = gsm::Sub(value, gsm::MultR(r[i], memory[i]));
                memory[i + 1] = gsm::Add(memory[i], gsm::MultR(r[i], value));
            }
            memory[0] = value;
            out[sample] = value;
        }
    }
}

int SearchLag(const std::int16_t* weighted, const std::int16_t* past, std::int32_t& maximum) {
    int best = kMinLag;
    maximum = 0;
    for (int lag = kMinLag; lag <= kMaxLag; lag++) {
        const std::int16_t* delayed = past + kMaxLag - lag;
        std::int32_t sum = 0;
        for (int i = 0; i < kSubFrameSamples; i++)
            sum += weighted[i] * delayed[i];
        if (sum * 2 > maximum) {
            maximum = sum * 2;
            best = lag;
        }
    }
    return best;
}

void Weigh(const std::int16_t* in, std::int16_t* out) {
    static constexpr std::int32_t kResponse[11] = {-134, -374, 0, 2054, 5741, 8192,
                                                   5741, 2054, 0, -374, -134};
    for (int i = 0; i < kSubFrameSamples; i++) {
        std::int32_t sum = 4096;
        for (int tap = 0; tap < 11; tap++)
            sum += in[i + tap] * kResponse[tap];
        out[i] = gsm::Saturate(sum >> 13);
    }
}

}  // namespace

const LGSMKernels& GsmPlainKernels() {
    static constexpr LGSMKernels kKernels{AutoCorrelate, Analyse, Synthesise, SearchLag, Weigh};
    return kKernels;
}
