// Random access to a source in either direction, in few seeks: codecs pay for each.
#pragma once

#include <cstdint>
#include <vector>

#include "sound/sound_source.h"

// Moves the source's position; nobody else may read it meanwhile.
class LFrameCache {
public:
    static constexpr int kMaxFetchFrames = kMaxBlockFrames;

    explicit LFrameCache(const LSoundSource& source);

    // Frames from `from` on, interleaved, valid until the next call. Frames before 0 and past the
    // end are silence. The direction says what will be asked for next.
    const int* Fetch(std::int64_t from, int frames, bool isBackwards);

private:
    static constexpr int kCapacity = 3 * kMaxBlockFrames;

    bool Holds(std::int64_t from, int frames) const;
    void Append(int frames);
    int* At(int frame) { return buffer_.data() + std::ptrdiff_t{frame} * source_->Channels(); }

    LSoundSource source_;
    std::vector<int> buffer_;
    std::int64_t first_ = 0;  // frame number of the buffer's start
    int frames_ = 0;          // held; the source stands behind the last of them
};
