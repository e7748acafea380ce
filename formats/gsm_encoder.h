// GSM 06.10 full-rate encoder.
#pragma once

#include <cstdint>

#include "formats/gsm_base.h"

// Takes pipeline samples (16-bit values times 16), 160 a frame at 8000 Hz. Its preprocessing is
// this system's own: the offset compensation leaks by 1/1024, the pre-emphasis is 880/1024. From
// the LPC analysis on it follows the standard.
class LGSMEncoder : public LGSMBase {
public:
    explicit LGSMEncoder(const LGSMKernels& kernels = GsmFastKernels());

    void Reset();  // as new
    void EncodeFrame(const int* samples, LGSMFrame& frame);
    void EncodeNormal(const int* samples, unsigned char* out33);
    void EncodeWave(const int* samples320, unsigned char* out65);

private:
    static const std::int16_t NRFAC[8];  // normalised inverse mantissa

    void Preprocess(const int* samples, std::int16_t* words160);
    // Also rounds the words to the precision at which the sums cannot overflow, as the standard
    // does.
    void AutoCorrelation(std::int16_t* words160, std::int32_t* sums9) const;
    static void CalculateReflectionCoefficients(const std::int32_t* sums9,
                                                std::int16_t* coefficients8);
    static void TransformtoLogAreaRatios(std::int16_t* coefficientsToRatios8);
    static void QuantizationAndCoding(const std::int16_t* ratios8, LGSMFrame& frame);
    void ShortTermAnalysisFilter(const LGSMFrame& frame, const std::int16_t* words160,
                                 std::int16_t* residual160);
    // current points into the past residual at the sub-frame's place: the 120 words before it are
    // known.
    void CalculateLTPParameters(const std::int16_t* residual40, const std::int16_t* current,
                                LGSMSubFrame& subFrame) const;
    static void LongTermAnalysisFiltering(const LGSMSubFrame& subFrame,
                                          const std::int16_t* residual40,
                                          const std::int16_t* current, std::int16_t* estimate40,
                                          std::int16_t* error40);
    void RPEGridSelectionAndQuantization(const std::int16_t* error40, LGSMSubFrame& subFrame) const;
    void EncodeSubFrame(const std::int16_t* residual40, std::int16_t* current,
                        LGSMSubFrame& subFrame);

    std::int64_t previousInput_ = 0;
    std::int64_t offsetAccumulator_ = 0;
    std::int64_t emphasisMemory_ = 0;
    std::int16_t filterMemory_[gsm::kOrder] = {};
    std::int16_t pastResidual_[gsm::kMaxLag + gsm::kFrameSamples] = {};
};
