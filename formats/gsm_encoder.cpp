#include "formats/gsm_encoder.h"

#include <algorithm>

using gsm::kFrameSamples;
using gsm::kMaxLag;
using gsm::kOrder;
using gsm::kPulses;
using gsm::kSubFrameSamples;

const std::int16_t LGSMEncoder::NRFAC[8] = {29128, 26215, 23832, 21846, 20165, 18725, 17476, 16384};

namespace {

constexpr std::int16_t kGainLevels[3] = {6554, 16384,
                                         26214};  // decision levels between the four LTP gains

int LargestMagnitude(const std::int16_t* words, int count) {
    int lowest = 0;
    int highest = 0;
    for (int i = 0; i < count; i++) {
        lowest = std::min<int>(lowest, words[i]);
        highest = std::max<int>(highest, words[i]);
    }
    return std::min(std::max(highest, -lowest), 32767);
}

// The coded gain whose level range holds correlation / power, both scaled alike.
std::int16_t CodeGain(std::int32_t correlation, std::int32_t power) {
    if (correlation <= 0)
        return 0;
    if (correlation >= power)
        return 3;
    const int shift = gsm::Norm(power);
    const int scaledCorrelation = (correlation << shift) >> 16;
    const int scaledPower = (power << shift) >> 16;
    std::int16_t gain = 0;
    while (gain < 3 && scaledCorrelation > gsm::Mult(scaledPower, kGainLevels[gain]))
        gain++;
    return gain;
}

// The coded logarithmic amplitude (0 to 63) of a pulse block.
std::int16_t CodeBlockAmplitude(int largest) {
    int exponent = 0;
    for (int rest = largest >> 9; rest > 0 && exponent < 6; rest >>= 1)
        exponent++;
    return gsm::Add(largest >> (exponent + 5), exponent << 3);
}

}  // namespace

LGSMEncoder::LGSMEncoder(const LGSMKernels& kernels) : LGSMBase(kernels) {}

void LGSMEncoder::Reset() {
    LGSMBase::Reset();
    previousInput_ = offsetAccumulator_ = emphasisMemory_ = 0;
    std::fill_n(filterMemory_, kOrder, std::int16_t{0});
    std::fill_n(pastResidual_, kMaxLag + kFrameSamples, std::int16_t{0});
}

void LGSMEncoder::Preprocess(const int* samples, std::int16_t* words) {
    std::int64_t input = previousInput_;
    std::int64_t accumulator = offsetAccumulator_;
    std::int64_t before = emphasisMemory_;
    for (int i = 0; i < kFrameSamples; i++) {
        accumulator += (samples[i] - input) * 1024;
        input = samples[i];
        const std::int64_t compensated = (accumulator + 512) >> 10;
        accumulator -= compensated;
        const std::int64_t emphasised = (compensated - ((before * 880 + 512) >> 10) + 16) >> 5;
        before = compensated;
        words[i] = static_cast<std::int16_t>(std::clamp<std::int64_t>(emphasised, -32768, 32767));
    }
    previousInput_ = input;
    offsetAccumulator_ = accumulator;
    emphasisMemory_ = before;
}

void LGSMEncoder::AutoCorrelation(std::int16_t* words, std::int32_t* sums) const {
    const int largest = LargestMagnitude(words, kFrameSamples);
    const int scale = largest == 0 ? 0 : 4 - gsm::Norm(largest << 16);
    if (scale > 0) {
        const int factor = 16384 >> (scale - 1);
        for (int i = 0; i < kFrameSamples; i++)
            words[i] = static_cast<std::int16_t>((words[i] * factor + 16384) >> 15);
    }
    kernels_.autoCorrelate(words, sums);
    if (scale > 0) {
        for (int i = 0; i < kFrameSamples; i++)
            words[i] = gsm::Saturate(words[i] * (1 << scale));
    }
}

// Schur recursion.
void LGSMEncoder::CalculateReflectionCoefficients(const std::int32_t* sums,
                                                  std::int16_t* coefficients) {
    std::fill_n(coefficients, kOrder, std::int16_t{0});
    if (sums[0] == 0)
        return;
    const int shift = gsm::Norm(sums[0]);
    std::int16_t p[kOrder + 1];
    std::int16_t k[kOrder + 1];
    for (int i = 0; i <= kOrder; i++)
        p[i] = k[i] = static_cast<std::int16_t>((sums[i] * (1 << shift)) >> 16);
    for (int n = 1; n <= kOrder; n++) {
        const std::int16_t magnitude = gsm::Abs(p[1]);
        if (p[0] < magnitude)
            return;
        const std::int16_t quotient = gsm::Div(magnitude, p[0]);
        const std::int16_t r = static_cast<std::int16_t>(p[1] > 0 ? -quotient : quotient);
        coefficients[n - 1] = r;
        p[0] = gsm::Add(p[0], gsm::MultR(p[1], r));
        for (int m = 1; m <= kOrder - n; m++) {
            const std::int16_t next = p[m + 1];
            p[m] = gsm::Add(next, gsm::MultR(k[m], r));
            k[m] = gsm::Add(k[m], gsm::MultR(next, r));
        }
    }
}

void LGSMEncoder::TransformtoLogAreaRatios(std::int16_t* values) {
    for (int i = 0; i < kOrder; i++) {
        int magnitude = gsm::Abs(values[i]);
        if (magnitude < 22118)
            magnitude >>= 1;
        else if (magnitude < 31130)
            magnitude -= 11059;
        else
            magnitude = (magnitude - 26112) << 2;
        values[i] = static_cast<std::int16_t>(values[i] < 0 ? -magnitude : magnitude);
    }
}

void LGSMEncoder::QuantizationAndCoding(const std::int16_t* ratios, LGSMFrame& frame) {
    for (int i = 0; i < kOrder; i++) {
        const int rounded = gsm::Add(gsm::Add(gsm::Mult(A[i], ratios[i]), B[i]), 256) >> 9;
        frame.codedRatios[i] =
            static_cast<std::int16_t>(std::clamp<int>(rounded, MIC[i], MAC[i]) - MIC[i]);
    }
}

void LGSMEncoder::ShortTermAnalysisFilter(const LGSMFrame& frame, const std::int16_t* words,
                                          std::int16_t* residual) {
    std::int16_t ratios[kOrder];
    DecodeCodedLogAreaRatios(frame, ratios);
    LGSMSegmentCoefficients coefficients;
    ReflectionCoefficientsFromLAR(ratios, coefficients);
    kernels_.analyse(coefficients, filterMemory_, words, residual);
}

void LGSMEncoder::CalculateLTPParameters(const std::int16_t* residual, const std::int16_t* current,
                                         LGSMSubFrame& subFrame) const {
    const int largest = LargestMagnitude(residual, kSubFrameSamples);
    const int headroom = largest == 0 ? 0 : gsm::Norm(largest << 16);
    const int scale = headroom > 6 ? 0 : 6 - headroom;
    std::int16_t weighted[kSubFrameSamples];
    for (int i = 0; i < kSubFrameSamples; i++)
        weighted[i] = static_cast<std::int16_t>(residual[i] >> scale);

    std::int32_t correlation = 0;
    const int lag = kernels_.searchLag(weighted, current - kMaxLag, correlation);
    std::int32_t power = 0;
    for (int i = 0; i < kSubFrameSamples; i++) {
        const int word = current[i - lag] >> 3;
        power += word * word;
    }
    subFrame.lag = static_cast<std::int16_t>(lag);
    subFrame.gain = CodeGain(correlation >> (6 - scale), power * 2);
}

void LGSMEncoder::LongTermAnalysisFiltering(const LGSMSubFrame& subFrame,
                                            const std::int16_t* residual,
                                            const std::int16_t* current, std::int16_t* estimate,
                                            std::int16_t* error) {
    const std::int16_t* delayed = current - subFrame.lag;
    const int gain = QLB[subFrame.gain];
    for (int i = 0; i < kSubFrameSamples; i++) {
        const int product = (delayed[i] * gain + 16384) >> 15;
        estimate[i] = static_cast<std::int16_t>(product);
        error[i] = gsm::Sub(residual[i], product);
    }
}

void LGSMEncoder::RPEGridSelectionAndQuantization(const std::int16_t* error,
                                                  LGSMSubFrame& subFrame) const {
    std::int16_t padded[kSubFrameSamples + 10] = {};
    std::copy_n(error, kSubFrameSamples, padded + 5);
    std::int16_t weighted[kSubFrameSamples];
    kernels_.weigh(padded, weighted);

    std::int32_t bestEnergy = 0;
    subFrame.grid = 0;
    for (std::int16_t grid = 0; grid < 4; grid++) {
        std::int32_t energy = 0;
        for (int i = 0; i < kPulses; i++) {
            const int word = weighted[grid + 3 * i] >> 2;
            energy += word * word;
        }
        if (energy > bestEnergy) {
            bestEnergy = energy;
            subFrame.grid = grid;
        }
    }

    std::int16_t chosen[kPulses];
    for (int i = 0; i < kPulses; i++)
        chosen[i] = weighted[subFrame.grid + 3 * i];
    subFrame.blockAmplitude = CodeBlockAmplitude(LargestMagnitude(chosen, kPulses));
    int exponent = 0;
    int mantissa = 0;
    SplitBlockAmplitude(subFrame.blockAmplitude, exponent, mantissa);
    for (int i = 0; i < kPulses; i++) {
        const int normalised = gsm::Saturate(chosen[i] * (1 << (6 - exponent)));
        subFrame.pulses[i] =
            static_cast<std::int16_t>((gsm::Mult(normalised, NRFAC[mantissa]) >> 12) + 4);
    }
}

void LGSMEncoder::EncodeSubFrame(const std::int16_t* residual, std::int16_t* current,
                                 LGSMSubFrame& subFrame) {
    std::int16_t estimate[kSubFrameSamples];
    std::int16_t error[kSubFrameSamples];
    CalculateLTPParameters(residual, current, subFrame);
    LongTermAnalysisFiltering(subFrame, residual, current, estimate, error);
    RPEGridSelectionAndQuantization(error, subFrame);
    RPEGridReconstruction(subFrame, error);
    for (int i = 0; i < kSubFrameSamples; i++)
        current[i] = gsm::Add(error[i], estimate[i]);
}

void LGSMEncoder::EncodeFrame(const int* samples, LGSMFrame& frame) {
    std::int16_t words[kFrameSamples];
    std::int16_t residual[kFrameSamples];
    std::int32_t sums[kOrder + 1];
    std::int16_t ratios[kOrder];
    Preprocess(samples, words);
    AutoCorrelation(words, sums);
    CalculateReflectionCoefficients(sums, ratios);
    TransformtoLogAreaRatios(ratios);
    QuantizationAndCoding(ratios, frame);
    ShortTermAnalysisFilter(frame, words, residual);
    for (int i = 0; i < 4; i++)
        EncodeSubFrame(residual + i * kSubFrameSamples,
                       pastResidual_ + kMaxLag + i * kSubFrameSamples, frame.subFrames[i]);
    std::copy_n(pastResidual_ + kFrameSamples, kMaxLag, pastResidual_);
}

void LGSMEncoder::EncodeNormal(const int* samples, unsigned char* out33) {
    LGSMFrame frame;
    EncodeFrame(samples, frame);
    frame.EncodeNormal(out33);
}

void LGSMEncoder::EncodeWave(const int* samples320, unsigned char* out65) {
    LGSMFrame frame;
    EncodeFrame(samples320, frame);
    frame.EncodeWave1(out65);
    EncodeFrame(samples320 + kFrameSamples, frame);
    frame.EncodeWave2(out65);
}
