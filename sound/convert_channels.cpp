#include "sound/convert_channels.h"

#include <algorithm>
#include <cstddef>

#include "sound/kernels.h"

LSRCConvMonoStereo::LSRCConvMonoStereo(const LSoundSource& inner)
    : LSoundProcessBase(inner),
      block_(static_cast<std::size_t>(kMaxBlockFrames) * inner->Channels()) {
    channels_ = 2;
}

void LSRCConvMonoStereo::Read(int* buffer, int frames) {
    while (frames > 0) {
        const int count = std::min(frames, kMaxBlockFrames);
        inner_->Read(block_.data(), count);
        SoundKernels().monoToStereo(block_.data(), buffer, static_cast<std::size_t>(count));
        buffer += 2 * count;
        frames -= count;
    }
}

LSRCConvStereoMono::LSRCConvStereoMono(const LSoundSource& inner)
    : LSoundProcessBase(inner),
      block_(static_cast<std::size_t>(kMaxBlockFrames) *
             std::max<std::size_t>(inner->Channels(), 2)) {
    channels_ = 1;
}

void LSRCConvStereoMono::Read(int* buffer, int frames) {
    while (frames > 0) {
        const int count = std::min(frames, kMaxBlockFrames);
        inner_->Read(block_.data(), count);
        SoundKernels().stereoToLeft(block_.data(), buffer, static_cast<std::size_t>(count));
        buffer += count;
        frames -= count;
    }
}
