#include "sound/frame_cache.h"

#include <algorithm>
#include <limits>

LFrameCache::LFrameCache(const LSoundSource& source)
    : source_(source), buffer_(static_cast<std::size_t>(kCapacity) * source->Channels()) {}

const int* LFrameCache::Fetch(std::int64_t from, int frames, bool isBackwards) {
    if (!Holds(from, frames)) {
        const bool isContinued = from >= first_ && from <= first_ + frames_ && frames_ > 0;
        if (isContinued && !isBackwards) {
            const int dropped = static_cast<int>(from - first_);
            std::copy(At(dropped), At(frames_), At(0));
            frames_ -= dropped;
            first_ = from;
        } else {
            first_ = isBackwards ? from + frames - 2 * kMaxBlockFrames : from;
            first_ = std::clamp<std::int64_t>(first_, std::numeric_limits<int>::min() / 2,
                                              std::numeric_limits<int>::max() / 2);
            frames_ = 0;
            source_->Seek(static_cast<int>(std::max<std::int64_t>(first_, 0)));
        }
        Append(isBackwards ? 2 * kMaxBlockFrames : std::max(frames - frames_, kMaxBlockFrames));
    }
    // What is not there yet stays unknown to the cache, so that a growing source is asked again.
    const int offset =
        static_cast<int>(std::clamp<std::int64_t>(from - first_, 0, 2 * kMaxBlockFrames));
    if (offset + frames > frames_)
        std::fill(At(std::max(frames_, offset)), At(offset + frames), 0);
    return At(offset);
}

bool LFrameCache::Holds(std::int64_t from, int frames) const {
    return from >= first_ && from + frames <= first_ + frames_;
}

void LFrameCache::Append(int frames) {
    frames = std::min(frames, kCapacity - frames_);
    const int silent = static_cast<int>(std::clamp<std::int64_t>(-first_ - frames_, 0, frames));
    std::fill(At(frames_), At(frames_ + silent), 0);
    frames_ += silent;
    const std::int64_t available = source_->GetEndSample() - (first_ + frames_);
    int wanted = static_cast<int>(std::clamp<std::int64_t>(available, 0, frames - silent));
    while (wanted > 0) {
        const int count = std::min(wanted, kMaxBlockFrames);
        source_->Read(At(frames_), count);
        frames_ += count;
        wanted -= count;
    }
}
