// What GSM 06.10 encoding and decoding share: the tables and the steps that both ends compute
// alike.
#pragma once

#include <cstdint>

#include "formats/gsm_frame.h"
#include "formats/gsm_kernels.h"

class LGSMBase {
public:
    // Tables of the standard, by coefficient or by coded value.
    static const std::int16_t A[8];     // log-area ratio scale
    static const std::int16_t B[8];     // log-area ratio offset
    static const std::int16_t MIC[8];   // smallest coded ratio
    static const std::int16_t MAC[8];   // largest coded ratio
    static const std::int16_t QLB[4];   // LTP gain
    static const std::int16_t FAC[8];   // block amplitude mantissa
    static const std::int16_t XMCD[8];  // RPE pulse

    void Reset();

protected:
    explicit LGSMBase(const LGSMKernels& kernels) : kernels_(kernels) {}

    static void DecodeCodedLogAreaRatios(const LGSMFrame& frame, std::int16_t* ratios8);
    // Interpolates between the previous frame's ratios and these, which become the previous ones.
    void ReflectionCoefficientsFromLAR(const std::int16_t* ratios8, LGSMSegmentCoefficients& out);
    static void RPEGridReconstruction(const LGSMSubFrame& subFrame, std::int16_t* residual40);

    // Exponent (-4 to 6) and mantissa (0 to 7) of a coded block amplitude.
    static void SplitBlockAmplitude(int blockAmplitude, int& exponent, int& mantissa);

    const LGSMKernels& kernels_;

private:
    std::int16_t previousRatios_[gsm::kOrder] = {};
};
