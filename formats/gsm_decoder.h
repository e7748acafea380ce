// GSM 06.10 full-rate decoder.
#pragma once

#include <cstdint>

#include "formats/gsm_base.h"

// Gives pipeline samples (16-bit values times 16), 160 a frame at 8000 Hz. The de-emphasis is this
// system's own: 880/1024 at the pipeline's scale, without cutting low bits. Any bytes decode to
// something.
class LGSMDecoder : public LGSMBase {
public:
    explicit LGSMDecoder(const LGSMKernels& kernels = GsmFastKernels());

    void Reset();  // as new
    void DecodeFrame(const LGSMFrame& frame, int* samples);
    void DecodeFrameNormal(const unsigned char* in33, int* samples);
    void DecodeFrameWave(const unsigned char* in65, int* samples320);

private:
    // current points into the residual at the sub-frame's place: the 120 words before it are known.
    void DecodeSubFrame(const LGSMSubFrame& subFrame, std::int16_t* current);
    void ShortTermSynthesisFilter(const LGSMFrame& frame, const std::int16_t* residual160,
                                  std::int16_t* words160);
    void Postprocess(const std::int16_t* words160, int* samples);

    std::int16_t filterMemory_[gsm::kOrder + 1] = {};
    std::int16_t history_[gsm::kMaxLag] = {};
    std::int16_t lastLag_ = gsm::kMinLag;  // stands in for a lag out of range
    int emphasisMemory_ = 0;
};
