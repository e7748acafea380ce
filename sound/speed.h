// Plays a source faster, slower or backwards at its own pitch, for winding by ear.
#pragma once

#include <cstdint>
#include <vector>

#include "sound/frame_cache.h"
#include "sound/sound_source.h"
#include "sound/sound_time.h"

// Output is made in segments of rate / 90 frames (20 to 2730). A segment starts as the continuation
// of what was heard, plays half of itself so, and fades to another place over its second half along
// a cosine. That place is chosen so that the place's continuation begins where the factor wants it:
// a segment times the factor further on than the segment before. It may stray up to half a segment
// to where its waveform differs least from the one that fades out; the wanted places themselves
// never stray, so speeds are exact. Backwards, places and the frames within a segment both run
// towards the start: factor 1 gives the source unchanged, factor -1 the source reversed.
//
// The factor moves in a straight line, segment by segment, from start to end over the ramp (in
// output time); Seek starts it anew. Position and end are the inner source's, so that a panel's
// time follows. Backwards, the end stays ahead of the position until frame 0 is reached, and then
// equals it: that ends playback.
class LSRCSpeed final : public LSoundProcessBase {
public:
    // Factors are cut to +-1000.
    LSRCSpeed(const LSoundSource& inner, double startFactor, double endFactor, LSoundTime ramp);

    void Read(int* buffer, int frames) override;
    int GetPositionSample() const override;
    int GetEndSample() const override;
    void Seek(int frame) override;

private:
    void Restart(int frame);
    void ReBuffer();
    std::int64_t Advance() const;
    void Load(std::int64_t from, int frames, bool isBackwards);
    int FindPlace() const;
    std::int64_t Difference(const int* place, std::int64_t limit) const;
    void Mix(const int* place);

    int segment_;
    int reach_;                  // of the search, in frames either way
    std::int64_t startAdvance_;  // input frames for each segment, 16 fraction bits
    std::int64_t endAdvance_;
    std::int64_t rampSegments_;
    std::vector<int> window_;  // of what fades out, 24 fraction bits
    LFrameCache cache_;
    std::vector<int> fading_;    // continuation of what was heard: one segment
    std::vector<int> places_;    // around the wanted place, in playing order
    std::vector<int> output_;    // the segment being read
    std::int64_t position_ = 0;  // wanted place at the start of that segment, 16 fraction bits
    std::int64_t advance_ = 0;   // over that segment
    std::int64_t segmentCount_ = 0;
    int readPosition_ = 0;
    bool isStarted_ = false;
};

// Factory; an input that is not good is returned itself.
class LSPSpeed {
public:
    LSPSpeed(double startFactor, double endFactor, LSoundTime ramp)
        : startFactor_(startFactor), endFactor_(endFactor), ramp_(ramp) {}
    LSoundSource OpenSource(const LSoundSource& source) const;

private:
    double startFactor_;
    double endFactor_;
    LSoundTime ramp_;
};
