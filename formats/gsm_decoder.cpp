#include "formats/gsm_decoder.h"

#include <algorithm>

using gsm::kFrameSamples;
using gsm::kMaxLag;
using gsm::kMinLag;
using gsm::kSubFrameSamples;

LGSMDecoder::LGSMDecoder(const LGSMKernels& kernels) : LGSMBase(kernels) {}

void LGSMDecoder::Reset() {
    LGSMBase::Reset();
    std::fill_n(filterMemory_, gsm::kOrder + 1, std::int16_t{0});
    std::fill_n(history_, kMaxLag, std::int16_t{0});
    lastLag_ = kMinLag;
    emphasisMemory_ = 0;
}

void LGSMDecoder::DecodeSubFrame(const LGSMSubFrame& subFrame, std::int16_t* current) {
    if (subFrame.lag >= kMinLag && subFrame.lag <= kMaxLag)
        lastLag_ = subFrame.lag;
    std::int16_t excitation[kSubFrameSamples];
    RPEGridReconstruction(subFrame, excitation);
    const std::int16_t* delayed = current - lastLag_;
    const int gain = QLB[subFrame.gain];
    for (int i = 0; i < kSubFrameSamples; i++)
        current[i] = gsm::Add(excitation[i], (delayed[i] * gain + 16384) >> 15);
}

void LGSMDecoder::ShortTermSynthesisFilter(const LGSMFrame& frame, const std::int16_t* residual,
                                           std::int16_t* words) {
    std::int16_t ratios[gsm::kOrder];
    DecodeCodedLogAreaRatios(frame, ratios);
    LGSMSegmentCoefficients coefficients;
    ReflectionCoefficientsFromLAR(ratios, coefficients);
    kernels_.synthesise(coefficients, filterMemory_, residual, words);
}

void LGSMDecoder::Postprocess(const std::int16_t* words, int* samples) {
    int before = emphasisMemory_;
    for (int i = 0; i < kFrameSamples; i++) {
        // The filter's gain of 7 keeps the result within 24 bits, but its product needs more than
        // 32.
        before = words[i] * 32 + static_cast<int>((std::int64_t{before} * 880 + 512) >> 10);
        samples[i] = before;
    }
    emphasisMemory_ = before;
}

void LGSMDecoder::DecodeFrame(const LGSMFrame& frame, int* samples) {
    std::int16_t residual[kMaxLag + kFrameSamples];
    std::int16_t words[kFrameSamples];
    std::copy_n(history_, kMaxLag, residual);
    for (int i = 0; i < 4; i++)
        DecodeSubFrame(frame.subFrames[i], residual + kMaxLag + i * kSubFrameSamples);
    std::copy_n(residual + kFrameSamples, kMaxLag, history_);
    ShortTermSynthesisFilter(frame, residual + kMaxLag, words);
    Postprocess(words, samples);
}

void LGSMDecoder::DecodeFrameNormal(const unsigned char* in33, int* samples) {
    LGSMFrame frame;
    frame.DecodeNormal(in33);
    DecodeFrame(frame, samples);
}

void LGSMDecoder::DecodeFrameWave(const unsigned char* in65, int* samples320) {
    LGSMFrame frame;
    frame.DecodeWave1(in65);
    DecodeFrame(frame, samples320);
    frame.DecodeWave2(in65);
    DecodeFrame(frame, samples320 + kFrameSamples);
}
