// How the sections of a file overlap, so that their encoded sound joins without a gap, and goes on
// as it would have.
//
// An encoder looks back and ahead, and begins from nothing. So what is encoded of a section begins
// with a lead: the end of what stands before it in the same file. All leads begin at frames of the
// codec, counted from the file's beginning. Of a section's encoded frames the first ones, made from
// the lead while the encoder settles, are dropped, and the section before it gives up the last
// ones, which it made without knowing what follows: where it ends, this one goes on, nearly as one
// run of the encoder would.
#pragma once

#include <cstdint>

#include "formats/sound_types.h"

class BookSeam {
public:
    BookSeam(SoundType type, int kilobits, int speechRate);

    // Speech frames of the lead of a section that begins so many behind the file's beginning.
    std::int64_t Lead(std::int64_t begin) const;
    std::int64_t LongestLead() const;
    // The first frame of the codec, in the joined file, that is taken from that section.
    std::int64_t FirstFrame(std::int64_t begin) const;
    // Frames of the codec between the joined file's beginning and that of the section's own.
    std::int64_t FramesBefore(std::int64_t begin) const;

private:
    std::int64_t frames_ = 0;  // of the codec, in a step
    std::int64_t step_ = 0;    // speech frames; 0: sound that is joined sample by sample
    std::int64_t shortest_ = 0;
    std::int64_t settling_ = 0;  // frames of the codec
};

// What sound of that rate is encoded at.
int EncodedRate(SoundType type, int kilobits, int rate);
