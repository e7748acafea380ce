// Dither for sinks that keep 16 bits: without it what lies below their last bit is lost or becomes
// a tone.
#pragma once

#include <cstdint>

#include "sound/sound_source.h"

// Delivers whole 16-bit values. To a block that holds anything else, noise of triangular
// distribution, two such steps wide, is added before it is rounded; other blocks pass unchanged, so
// that 16-bit sound is copied bit for bit and silence stays silent. The noise is the same in every
// run.
class LSRCDither final : public LSoundProcessBase {
public:
    using LSoundProcessBase::LSoundProcessBase;

    void Read(int* buffer, int frames) override;
    int ReadableFrames() const override { return inner_->ReadableFrames(); }

private:
    std::uint32_t random_ = 1;
};
