// Sample rate conversion with a bank of windowed-sinc filters, in integers.
//
// What every kernel keeps, bit for bit:
// - Taps 0 to 31 make the first sum, taps 32 to 62 the second. Each is halved, rounding down; both
//   halves and the rounding constant are added, cut to 32 bits, and shifted. No sum wraps, whatever
//   the input.
// - Frame 0 comes from 32 zeros and the first 31 input frames; after a seek, from one zero, the 31
//   frames before the wanted one and 31 from it on. Output so lags by one input frame.
// - A refill happens only when the next window is not complete, so that the stream does not depend
//   on how it is read.
// - Samples that need more than 16 bits after the shift (a peak that rounds up to 32768) take a
//   slower path with the same result. The shift is at most 15, enough for peaks below 2^30; past
//   those, results are cut.
#pragma once

#include <cstdint>
#include <vector>

#include "sound/convert_rate_filter.h"
#include "sound/kernels.h"
#include "sound/sound_source.h"

// Position and end are in output frames. While the inner source streams, the end stays so far
// behind that no frame is made from data that has not arrived. While it winds back, the end stays
// ahead of the position until frame 0 is heard: the history still holds what lies before.
class LSRCConvertRate final : public LSoundProcessBase, public LConvertRateBase {
public:
    // A rate below 1 becomes 44100 with status kInvalidFormat.
    LSRCConvertRate(const LSoundSource& inner, int rate, bool wideBand);

    void Read(int* buffer, int frames) override;
    int GetPositionSample() const override;
    int GetEndSample() const override;
    void Seek(int frame) override;
    int OriginFrame(int frame) const override;

private:
    static constexpr int kOverlap = kFilterTaps;

    void Reset();
    void Refill();
    int RefillFrames() const;
    bool IsWindingBack() const { return blockEnd_ < blockStart_; }
    void ChooseShift(int frames);
    void LoadHistory(int frames);
    void KeepOverlap();
    int ReadyFrames() const;
    void Produce(int* buffer, int frames);
    template <typename Sample, typename Factor>
    LResampleSpan<Sample, Factor> MakeSpan(const Sample* history, const Factor* rows, int* out,
                                           int frames) const;
    int Scale(std::int64_t inputFrames) const;

    // Write position as a buffer of 32768 + 63 frames would have it: it decides how much each
    // refill reads. Kept is only what the next windows need: kOverlap frames and one block.
    int writePosition_ = 0;
    std::int64_t readIndex_ = 0;   // window of the next output frame, from the history's start
    int heldFrames_ = 0;           // frames in the history, the overlap included
    std::int64_t blockStart_ = 0;  // positions of the inner source around the last refill
    std::int64_t blockEnd_ = 0;
    int phase_ = 0;
    int shift_ = 0;
    bool isWide_ = false;                // this block runs through wide_
    std::vector<std::int32_t> overlap_;  // per channel the last kOverlap frames, not shifted
    std::vector<std::int32_t> block_;    // what the inner source delivered, interleaved
    std::vector<std::int16_t> narrow_;   // per channel overlap and block, shifted
    std::vector<std::int32_t> wide_;
};
