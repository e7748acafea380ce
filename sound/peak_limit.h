// A look-ahead limiter: gain falls before a peak arrives and recovers over several blocks.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "sound/sound_source.h"

// Works on blocks of rate / 35 frames (rate / 70 while the inner source streams when this is
// built), 16 to 8192. Three blocks are held; output comes from the oldest. Each block's gain is
// unity, or what brings its peak to the limit. When a block enters, the gain moves in a straight
// line over the oldest block's frames to the smallest of
// - the gains of the two newest blocks,
// - the mean of the last four gains,
// - the oldest block's own gain: without it, recovery would begin inside a loud block and let its
//   peaks through.
//
// Before the first block gains are unity, and the first block starts at the target that the first
// two blocks give. A source that stays within the limit passes unchanged. Rounding may take a
// negative sample two past the limit.
class LSRCPeakLimit final : public LSoundProcessBase {
public:
    static constexpr int kHighestLimit = 4194303;
    static constexpr int kUnityGain = 16777216;

    // The limit is the largest magnitude delivered, 0 to kHighestLimit.
    LSRCPeakLimit(const LSoundSource& inner, int limit);

    void Read(int* buffer, int frames) override;
    int GetPositionSample() const override;
    // While the inner source streams, the end of the frames that the blocks held and available can
    // still make.
    int GetEndSample() const override;
    void Seek(int frame) override;

    int BlockFrames() const { return blockFrames_; }

private:
    void Reset();
    void Fill();
    void Rotate();
    void Enter();
    void ReadNewest();
    int BlockGain(int peak) const;
    int TargetGain() const;

    int limit_;
    int blockFrames_;
    std::vector<int> storage_;
    std::array<int*, 3> blocks_;            // oldest, current, newest; in storage_
    std::array<std::int64_t, 3> starts_{};  // their positions in the inner source
    std::array<int, 4> gains_;              // of the last four blocks, newest first
    bool isFilled_ = false;
    int gain_ = kUnityGain;  // of the next frame
    int increment_ = 0;
    int readPosition_ = 0;  // in the oldest block
};
