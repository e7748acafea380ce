// The playback thread's record of the blocks it handed to the card.
#pragma once

#include <array>
#include <cstddef>

#include "sound/level.h"

struct BlockRecord {
    bool valid = false;
    int position = 0;  // frame at which the block starts
    int frames = 0;
    LDBMC levels;
};

// 256 records, the oldest overwritten. One thread.
class BlockRing {
public:
    void Add(int position, int frames, const LDBMC& levels) {
        records_[index_] = {true, position, frames, levels};
        index_ = (index_ + 1) % records_.size();
    }
    // The newest record, once: null when it was taken already or there is none. Valid until the
    // next Add.
    const BlockRecord* TakeNewest() {
        BlockRecord& newest = records_[(index_ + records_.size() - 1) % records_.size()];
        if (!newest.valid)
            return nullptr;
        newest.valid = false;
        return &newest;
    }

private:
    std::array<BlockRecord, 256> records_;
    std::size_t index_ = 0;
};
