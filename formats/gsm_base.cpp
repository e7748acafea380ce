#include "formats/gsm_base.h"

#include <algorithm>

const std::int16_t LGSMBase::A[8] = {20480, 20480, 20480, 20480, 13964, 15360, 8534, 9036};
const std::int16_t LGSMBase::B[8] = {0, 0, 2048, -2560, 94, -1792, -341, -1144};
const std::int16_t LGSMBase::MIC[8] = {-32, -32, -16, -16, -8, -8, -4, -4};
const std::int16_t LGSMBase::MAC[8] = {31, 31, 15, 15, 7, 7, 3, 3};
const std::int16_t LGSMBase::QLB[4] = {3277, 11469, 21299, 32767};
const std::int16_t LGSMBase::FAC[8] = {18431, 20479, 22527, 24575, 26623, 28671, 30719, 32767};
const std::int16_t LGSMBase::XMCD[8] = {-28672, -20480, -12288, -4096, 4096, 12288, 20480, 28672};

namespace {

constexpr std::int16_t kInverseA[8] = {13107, 13107, 13107, 13107, 19223, 17476, 31454, 29708};

// Log-area ratio to reflection coefficient, by the standard's three straight lines.
std::int16_t ReflectionFromRatio(std::int16_t ratio) {
    const std::int16_t magnitude = gsm::Abs(ratio);
    std::int16_t result = 0;
    if (magnitude < 11059)
        result = static_cast<std::int16_t>(magnitude << 1);
    else if (magnitude < 20070)
        result = static_cast<std::int16_t>(magnitude + 11059);
    else
        result = gsm::Add(magnitude >> 2, 26112);
    return static_cast<std::int16_t>(ratio < 0 ? -result : result);
}

}  // namespace

void LGSMBase::Reset() {
    std::fill_n(previousRatios_, gsm::kOrder, std::int16_t{0});
}

void LGSMBase::DecodeCodedLogAreaRatios(const LGSMFrame& frame, std::int16_t* ratios) {
    for (int i = 0; i < gsm::kOrder; i++) {
        const int coded = (frame.codedRatios[i] + MIC[i]) * 1024;
        const std::int16_t scaled = gsm::MultR(kInverseA[i], gsm::Sub(coded, B[i] * 2));
        ratios[i] = gsm::Add(scaled, scaled);
    }
}

void LGSMBase::ReflectionCoefficientsFromLAR(const std::int16_t* ratios,
                                             LGSMSegmentCoefficients& out) {
    for (int i = 0; i < gsm::kOrder; i++) {
        const int before = previousRatios_[i];
        const int now = ratios[i];
        const std::int16_t quarters = gsm::Add(before >> 2, now >> 2);
        out.values[0][i] = ReflectionFromRatio(gsm::Add(quarters, before >> 1));
        out.values[1][i] = ReflectionFromRatio(gsm::Add(before >> 1, now >> 1));
        out.values[2][i] = ReflectionFromRatio(gsm::Add(quarters, now >> 1));
        out.values[3][i] = ReflectionFromRatio(ratios[i]);
        previousRatios_[i] = ratios[i];
    }
}

void LGSMBase::SplitBlockAmplitude(int blockAmplitude, int& exponent, int& mantissa) {
    exponent = blockAmplitude > 15 ? (blockAmplitude >> 3) - 1 : 0;
    mantissa = blockAmplitude - (exponent << 3);
    if (mantissa == 0) {
        exponent = -4;
        mantissa = 7;
        return;
    }
    for (; mantissa <= 7; exponent--)
        mantissa = (mantissa << 1) | 1;
    mantissa -= 8;
}

void LGSMBase::RPEGridReconstruction(const LGSMSubFrame& subFrame, std::int16_t* residual) {
    int exponent = 0;
    int mantissa = 0;
    SplitBlockAmplitude(subFrame.blockAmplitude, exponent, mantissa);
    const int shift = 6 - exponent;
    const int rounding = shift > 0 ? 1 << (shift - 1) : 0;
    std::fill_n(residual, gsm::kSubFrameSamples, std::int16_t{0});
    for (int i = 0; i < gsm::kPulses; i++) {
        const std::int16_t pulse = gsm::MultR(FAC[mantissa], XMCD[subFrame.pulses[i]]);
        residual[subFrame.grid + 3 * i] =
            static_cast<std::int16_t>(gsm::Add(pulse, rounding) >> shift);
    }
}
