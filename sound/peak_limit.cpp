#include "sound/peak_limit.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "sound/kernels.h"
#include "sound/level.h"

namespace {

constexpr int kMinBlock = 16;
constexpr int kStreamingBlocksPerSecond = 70;
constexpr int kBlocksPerSecond = 35;

int BlockFramesFor(LSoundSourceBase& source) {
    const int divisor = source.IsStreaming() ? kStreamingBlocksPerSecond : kBlocksPerSecond;
    return std::clamp(source.SampleRate() / divisor, kMinBlock, kMaxBlockFrames);
}

}  // namespace

LSRCPeakLimit::LSRCPeakLimit(const LSoundSource& inner, int limit)
    : LSoundProcessBase(inner),
      limit_(std::clamp(limit, 0, kHighestLimit)),
      blockFrames_(BlockFramesFor(*inner)),
      storage_(std::size_t{3} * static_cast<std::size_t>(blockFrames_ * channels_)) {
    for (std::size_t i = 0; i < blocks_.size(); ++i)
        blocks_[i] = storage_.data() + i * static_cast<std::size_t>(blockFrames_ * channels_);
    peakMagnitude_ = std::min(peakMagnitude_, limit_);
    Reset();
}

void LSRCPeakLimit::Reset() {
    gains_.fill(kUnityGain);
    isFilled_ = false;  // the rest begins anew with the next read
}

void LSRCPeakLimit::Read(int* buffer, int frames) {
    if (!isFilled_)
        Fill();
    while (frames > 0) {
        if (readPosition_ == blockFrames_)
            Enter();
        const int count = std::min(frames, blockFrames_ - readPosition_);
        const int* const from = blocks_[0] + readPosition_ * channels_;
        if (gain_ == kUnityGain && increment_ == 0)
            std::copy_n(from, count * channels_, buffer);
        else
            SoundKernels().gain(from, buffer, static_cast<std::size_t>(count), channels_, gain_,
                                increment_);
        gain_ += increment_ * count;
        readPosition_ += count;
        buffer += count * channels_;
        frames -= count;
    }
}

void LSRCPeakLimit::Fill() {
    ReadNewest();
    Rotate();
    ReadNewest();
    gain_ = TargetGain();
    isFilled_ = true;
    Enter();
}

// The newest block becomes the current one, and so on; the oldest makes room.
void LSRCPeakLimit::Rotate() {
    std::rotate(blocks_.begin(), blocks_.begin() + 1, blocks_.end());
    std::rotate(starts_.begin(), starts_.begin() + 1, starts_.end());
}

void LSRCPeakLimit::Enter() {
    Rotate();
    ReadNewest();
    const int difference = TargetGain() - gain_;
    increment_ = difference / blockFrames_;
    gain_ += difference % blockFrames_;
    readPosition_ = 0;
}

void LSRCPeakLimit::ReadNewest() {
    starts_[2] = inner_->GetPositionSample();
    inner_->Read(blocks_[2], blockFrames_);
    std::copy_backward(gains_.begin(), gains_.end() - 1, gains_.end());
    gains_[0] = BlockGain(GetBufferPeak(blocks_[2], blockFrames_, channels_));
}

int LSRCPeakLimit::BlockGain(int peak) const {
    if (peak <= limit_)
        return kUnityGain;
    const std::int64_t steps = (std::int64_t{peak} + 64) / 64;
    return static_cast<int>(std::int64_t{limit_} * 512 / steps * 512);
}

int LSRCPeakLimit::TargetGain() const {
    const int mean = (gains_[0] + gains_[1] + gains_[2] + gains_[3]) / 4;
    return std::min({gains_[0], gains_[1], gains_[2], mean});
}

int LSRCPeakLimit::GetPositionSample() const {
    if (!isFilled_)
        return inner_->GetPositionSample();
    // A source that winds moves its position by more or less than what was read, or not at all.
    const std::int64_t moved = starts_[1] - starts_[0];
    return static_cast<int>(starts_[0] + moved * readPosition_ / blockFrames_);
}

int LSRCPeakLimit::GetEndSample() const {
    const int end = inner_->GetEndSample();
    // Winding back: the blocks held are still to be heard.
    if (isFilled_ && starts_[2] < starts_[0])
        return std::max(end, GetPositionSample() + blockFrames_ - readPosition_ + 1);
    if (!inner_->IsStreaming())
        return end;
    // The oldest block can be read to its end; each further whole block that has arrived frees one.
    const std::int64_t start = isFilled_ ? starts_[0] : inner_->GetPositionSample();
    const std::int64_t free = std::max<std::int64_t>((end - start) / blockFrames_ - 2, isFilled_);
    return static_cast<int>(std::min<std::int64_t>(start + free * blockFrames_, end));
}

void LSRCPeakLimit::Seek(int frame) {
    inner_->Seek(frame);
    Reset();
}
