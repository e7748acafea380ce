// The inner loops of the sound pipeline, in one table for each instruction set.
//
// Every table gives the same bits; they differ in speed only. The table is chosen once, at first
// use, from what the processor has.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr int kFilterTaps = 63;
constexpr int kFirstHalfTaps =
    32;  // products of taps 0..31 make the first sum, those of 32..62 the second

// A packed row holds the 16-bit forms of one phase: taps 0..31, a zero, taps 32..62. The zero lets
// the second half be multiplied with the 32 samples from tap 31 on, so that no load passes the
// window. Taps 31 and 32, the only ones that can exceed 16 bits, are stored minus 32768; kernels
// add the sample times 16384 back once the sums are halved.
constexpr int kPackedRowSize = 64;
constexpr int kPackedBias = 32768;

// Frames of one channel that are computed in one go. `Sample` is the type of the history.
template <typename Sample, typename Coefficient>
struct LResampleSpan {
    const Sample* history;    // first sample of the first frame's window of kFilterTaps
    const Coefficient* rows;  // of all phases
    int phases;
    int phase;      // of the first frame
    int wholeStep;  // samples advanced for each frame, and
    int phaseStep;  // phases on top (below `phases`)
    int outputShift;
    int rounding;
    int* out;
    int outStride;
    int frames;
};
using LNarrowSpan = LResampleSpan<std::int16_t, std::int16_t>;  // rows are packed, 64 a phase
using LWideSpan = LResampleSpan<std::int32_t, std::int32_t>;    // rows are plain, 63 a phase

struct LSoundKernels {
    const char* name;
    // Largest magnitude of count samples; -2^31 counts as 2^31 - 1.
    int (*peak)(const int* samples, std::size_t count);
    // Each frame: sums of both halves, each >> 1, added with the halved bias and the rounding, cut
    // to 32 bits, >> outputShift.
    void (*resample)(const LNarrowSpan& span);
    // out[i] = (in[i * channels] + half) >> shift; the caller knows that it fits.
    void (*narrow)(const int* in, int channels, std::int16_t* out, std::size_t frames, int shift);
    void (*monoToStereo)(const int* in, int* out, std::size_t frames);
    void (*stereoToLeft)(const int* in, int* out, std::size_t frames);
    // Frame i times (gain + i * increment) / 2^24, in 12-bit splits; gains are 0 to 2^24.
    void (*gain)(const int* in, int* out, std::size_t frames, int channels, int gain,
                 int increment);
};

// Any thread.
const LSoundKernels& SoundKernels();

// The same arithmetic on samples that need more than 16 bits, or tables that cannot be packed.
// Slow.
void ResampleWide(const LWideSpan& span);

// For tests and benchmarks: puts another table in place, while nothing else uses sound. False when
// it is not in this program or the processor lacks it.
enum class LKernelChoice { kBest, kPortable, kSse2, kAvx2 };
bool SelectSoundKernels(LKernelChoice choice);
