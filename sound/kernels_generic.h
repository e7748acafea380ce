// Bodies that the compiler vectorises by itself. Included by the source file of each instruction
// set, so everything has internal linkage: code compiled for one set must never be linked into the
// path of another.
#pragma once

#include <cstddef>
#include <cstdint>

#include "sound/kernels.h"

namespace {

[[maybe_unused]] int GenericPeak(const int* samples, std::size_t count) {
    int highest = 0;
    int lowest = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const int sample = samples[i];
        highest = sample > highest ? sample : highest;
        lowest = sample < lowest ? sample : lowest;
    }
    lowest = lowest < -INT32_MAX ? -INT32_MAX : lowest;
    return highest > -lowest ? highest : -lowest;
}

template <int kStep>
void NarrowEvery(const int* in, std::int16_t* out, std::size_t frames, int shift) {
    const int half = shift > 0 ? 1 << (shift - 1) : 0;
    for (std::size_t i = 0; i < frames; ++i)
        out[i] = static_cast<std::int16_t>((in[i * kStep] + half) >> shift);
}

[[maybe_unused]] void GenericNarrow(const int* in, int channels, std::int16_t* out,
                                    std::size_t frames, int shift) {
    if (channels == 1)
        return NarrowEvery<1>(in, out, frames, shift);
    if (channels == 2)
        return NarrowEvery<2>(in, out, frames, shift);
    for (std::size_t i = 0; i < frames; ++i)
        NarrowEvery<1>(in + i * static_cast<std::size_t>(channels), out + i, 1, shift);
}

[[maybe_unused]] void GenericMonoToStereo(const int* in, int* out, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) {
        out[2 * i] = in[i];
        out[2 * i + 1] = in[i];
    }
}

[[maybe_unused]] void GenericStereoToLeft(const int* in, int* out, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i)
        out[i] = in[2 * i];
}

inline int ScaleSample(int sample, int gain) {
    return (sample >> 12) * (gain >> 12) + (((gain >> 12) * (sample & 4095)) >> 12) +
           (((sample >> 12) * (gain & 4095)) >> 12);
}

[[maybe_unused]] void GenericGain(const int* in, int* out, std::size_t frames, int channels,
                                  int gain, int increment) {
    if (channels == 1) {
        for (std::size_t i = 0; i < frames; ++i)
            out[i] = ScaleSample(in[i], gain + static_cast<int>(i) * increment);
    } else if (channels == 2) {
        for (std::size_t i = 0; i < frames; ++i) {
            const int frameGain = gain + static_cast<int>(i) * increment;
            out[2 * i] = ScaleSample(in[2 * i], frameGain);
            out[2 * i + 1] = ScaleSample(in[2 * i + 1], frameGain);
        }
    } else {
        for (std::size_t i = 0; i < frames; ++i, gain += increment)
            for (int channel = 0; channel < channels; ++channel)
                *out++ = ScaleSample(*in++, gain);
    }
}

// What the bias of the taps beside the middle is worth once the sums, which lack it, are halved.
struct HalvedBias {
    int first;
    int second;
};
[[maybe_unused]] inline HalvedBias BiasOf(const std::int16_t* window) {
    return {window[kFirstHalfTaps - 1] * (kPackedBias / 2),
            window[kFirstHalfTaps] * (kPackedBias / 2)};
}

// Moves a window one output frame on.
struct WindowStep {
    int phase;
    std::ptrdiff_t offset = 0;

    template <typename Span>
    void Advance(const Span& span) {
        phase += span.phaseStep;
        const bool isCarry = phase >= span.phases;
        phase -= isCarry ? span.phases : 0;
        offset += span.wholeStep + (isCarry ? 1 : 0);
    }
};

}  // namespace
