// The inner loops of the GSM codec: a plain form that states the arithmetic, and a vector form that
// gives the same words, chosen once for the processor at hand.
#pragma once

#include <cstdint>

#include "formats/gsm_arithmetic.h"

// Reflection coefficients for the four segments of a frame in which they are constant.
struct LGSMSegmentCoefficients {
    alignas(16) std::int16_t values[4][gsm::kOrder];
};
// First sample after each segment.
constexpr int kGsmSegmentEnds[4] = {13, 27, 40, gsm::kFrameSamples};

struct LGSMKernels {
    // Sums of s[i] * s[i - lag], doubled, for lags 0 to 8; samples are at most 2048 in magnitude.
    void (*autoCorrelate)(const std::int16_t* samples160, std::int32_t* sums9);
    // Lattice filters over a frame; memory is updated. Coefficients are never -32768.
    void (*analyse)(const LGSMSegmentCoefficients& coefficients, std::int16_t* memory8,
                    const std::int16_t* in160, std::int16_t* out160);
    void (*synthesise)(const LGSMSegmentCoefficients& coefficients, std::int16_t* memory9,
                       const std::int16_t* in160, std::int16_t* out160);
    // The lag from 40 to 120 whose past samples correlate best with the 40 weighted ones (at most
    // 512 in magnitude), the smallest on ties, and the doubled correlation; lag 40 and 0 when none
    // is positive. past120 ends where the weighted samples begin.
    int (*searchLag)(const std::int16_t* weighted40, const std::int16_t* past120,
                     std::int32_t& maximum);
    // The RPE weighting filter; in50 has five zeros in front of and behind the 40 samples.
    void (*weigh)(const std::int16_t* in50, std::int16_t* out40);
};

const LGSMKernels& GsmPlainKernels();
const LGSMKernels& GsmFastKernels();  // the plain ones where the processor offers nothing better
