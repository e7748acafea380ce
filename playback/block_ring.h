// The playback thread's record of the blocks that the card was given and the ear has not had yet.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "sound/level.h"

struct BlockRecord {
    std::int64_t first = 0;  // the card's count of frames at which the block starts
    int frames = 0;
    int position = 0;  // where it starts in the source as the card gets it
    int frame = 0;     // the same in the owner's source
    LDBMC levels;
};

// 256 records, oldest first. A full ring takes no more until the ear has followed. One thread.
class BlockRing {
public:
    bool IsFull() const { return count_ == kRecords; }
    void Clear() { count_ = 0; }
    void Add(const BlockRecord& record) {
        records_[(oldest_ + count_) % kRecords] = record;
        ++count_;
    }
    // Forgets the blocks heard to their end. The one being heard next, null when there is none;
    // valid until the next call.
    const BlockRecord* Follow(std::int64_t heard) {
        while (count_ > 0 && records_[oldest_].first + records_[oldest_].frames <= heard) {
            oldest_ = (oldest_ + 1) % kRecords;
            --count_;
        }
        return count_ > 0 ? &records_[oldest_] : nullptr;
    }

private:
    static constexpr std::size_t kRecords = 256;

    std::array<BlockRecord, kRecords> records_;
    std::size_t oldest_ = 0;
    std::size_t count_ = 0;
};
