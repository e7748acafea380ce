// One channel to two, and two to one. Positions, end, seeks and streaming are those of the inner
// source.
#pragma once

#include <vector>

#include "sound/sound_source.h"

// Copies each sample into both channels.
class LSRCConvMonoStereo final : public LSoundProcessBase {
public:
    explicit LSRCConvMonoStereo(const LSoundSource& inner);
    void Read(int* buffer, int frames) override;

private:
    std::vector<int> block_;  // kMaxBlockFrames frames of the inner source
};

// Keeps the left channel and drops the right: listeners of a two-channel dictation rely on hearing
// one speaker only.
class LSRCConvStereoMono final : public LSoundProcessBase {
public:
    explicit LSRCConvStereoMono(const LSoundSource& inner);
    void Read(int* buffer, int frames) override;

private:
    std::vector<int> block_;
};
