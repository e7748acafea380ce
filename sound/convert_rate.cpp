#include "sound/convert_rate.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "sound/level.h"

namespace {

constexpr int kHistoryFrames = 32768;
constexpr int kMoveAfter = 32511;  // write position past which the last frames move to the front
constexpr int kStartPosition = 32;
constexpr int kPreReadFrames = 31;
constexpr int kFilterDelay = 32;
constexpr int kStreamingReserve = 33;
constexpr int kStreamingPoll = 64;   // frames asked for when a streaming source has none
constexpr int kWindingFrames = 512;  // read at once towards frame 0, behind which is silence
constexpr int kMaxShift = 15;
constexpr int kMaxNarrow = 32767;
constexpr int kMaxDoubledPeak = 1048576;
constexpr int kChannelFrames = kFilterTaps + kMaxBlockFrames;  // history of one channel

std::size_t Size(int value) {
    return static_cast<std::size_t>(value);
}

int Clamp32(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

std::int64_t FloorDivide(std::int64_t value, std::int64_t divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

}  // namespace

LSRCConvertRate::LSRCConvertRate(const LSoundSource& inner, int rate, bool wideBand)
    : LSoundProcessBase(inner),
      LConvertRateBase(inner->SampleRate(), rate < 1 ? 44100 : rate, wideBand),
      overlap_(Size(kOverlap * channels_)),
      block_(Size(kMaxBlockFrames * channels_)),
      narrow_(Size(kChannelFrames * channels_)),
      wide_(Size(kChannelFrames * channels_)) {
    sampleRate_ = rate;
    if (rate < 1) {
        sampleRate_ = 44100;
        status_ = SoundStatus::kInvalidFormat;
    }
    if (peakMagnitude_ <= kMaxDoubledPeak)
        peakMagnitude_ *= 2;  // the filter overshoots
    Reset();
}

// Silence before the first frame. The wide history serves here because what a seek pre-reads is not
// shifted.
void LSRCConvertRate::Reset() {
    for (int channel = 0; channel < channels_; ++channel)
        std::fill_n(wide_.begin() + channel * kChannelFrames, kOverlap, 0);
    isWide_ = true;
    shift_ = 0;
    phase_ = 0;
    blockStart_ = 0;
    blockEnd_ = 0;
    writePosition_ = kStartPosition;
    readIndex_ = kOverlap - kStartPosition;
    heldFrames_ = kOverlap;
}

void LSRCConvertRate::Read(int* buffer, int frames) {
    while (frames > 0) {
        const int count = std::min(frames, ReadyFrames());
        if (count < 1) {
            Refill();
            continue;
        }
        Produce(buffer, count);
        buffer += count * channels_;
        frames -= count;
    }
}

// Output frames whose windows are complete.
int LSRCConvertRate::ReadyFrames() const {
    const std::int64_t spare = heldFrames_ - kFilterTaps - readIndex_;
    if (spare < 0)
        return 0;
    return Clamp32((spare * Phases() + Phases() - 1 - phase_) / Step() + 1);
}

int LSRCConvertRate::RefillFrames() const {
    const int most = IsWindingBack() ? kWindingFrames : kMaxBlockFrames;
    const int space = std::min(most, kHistoryFrames - writePosition_);
    if (!inner_->IsStreaming())
        return space;
    const int available =
        Clamp32(std::int64_t{inner_->GetEndSample()} - inner_->GetPositionSample());
    return std::min(space, available < 1 ? kStreamingPoll : available);
}

void LSRCConvertRate::Refill() {
    if (writePosition_ > kMoveAfter)
        writePosition_ = kOverlap;
    const int frames = RefillFrames();
    blockStart_ = inner_->GetPositionSample();
    inner_->Read(block_.data(), frames);
    blockEnd_ = inner_->GetPositionSample();
    KeepOverlap();
    ChooseShift(frames);
    LoadHistory(frames);
    readIndex_ -= heldFrames_ - kOverlap;
    heldFrames_ = kOverlap + frames;
    writePosition_ += frames;
}

// Takes the last frames of the history, shifted back. What rounding took from them is gone for
// good.
void LSRCConvertRate::KeepOverlap() {
    for (int channel = 0; channel < channels_; ++channel) {
        const int from = channel * kChannelFrames + heldFrames_ - kOverlap;
        for (int i = 0; i < kOverlap; ++i) {
            const int sample = isWide_ ? wide_[Size(from + i)] : narrow_[Size(from + i)];
            overlap_[Size(channel * kOverlap + i)] = Clamp32(std::int64_t{sample} << shift_);
        }
    }
}

void LSRCConvertRate::ChooseShift(int frames) {
    const std::int64_t peak = std::max(GetBufferPeak(block_.data(), frames, channels_),
                                       GetBufferPeak(overlap_.data(), kOverlap, channels_));
    shift_ = 0;
    while (shift_ < kMaxShift && (peak >> shift_) > kMaxNarrow)
        ++shift_;
    const std::int64_t half = (std::int64_t{1} << shift_) / 2;
    isWide_ = PackedRows() == nullptr || ((peak + half) >> shift_) > kMaxNarrow;
}

void LSRCConvertRate::LoadHistory(int frames) {
    const auto narrow = SoundKernels().narrow;
    for (int channel = 0; channel < channels_; ++channel) {
        const int* const overlap = overlap_.data() + channel * kOverlap;
        const int* const block = block_.data() + channel;
        if (isWide_) {
            const std::int64_t half = (std::int64_t{1} << shift_) / 2;
            std::int32_t* out = wide_.data() + channel * kChannelFrames;
            for (int i = 0; i < kOverlap; ++i)
                *out++ = static_cast<std::int32_t>((overlap[i] + half) >> shift_);
            for (int i = 0; i < frames; ++i)
                *out++ = static_cast<std::int32_t>((block[i * channels_] + half) >> shift_);
        } else {
            std::int16_t* const out = narrow_.data() + channel * kChannelFrames;
            narrow(overlap, 1, out, Size(kOverlap), shift_);
            narrow(block, channels_, out + kOverlap, Size(frames), shift_);
        }
    }
}

template <typename Sample, typename Factor>
LResampleSpan<Sample, Factor> LSRCConvertRate::MakeSpan(const Sample* history, const Factor* rows,
                                                        int* out, int frames) const {
    const int outputShift = kMaxShift - shift_;
    return {history + readIndex_,
            rows,
            Phases(),
            phase_,
            Step() / Phases(),
            Step() % Phases(),
            outputShift,
            (1 << outputShift) / 2,
            out,
            channels_,
            frames};
}

void LSRCConvertRate::Produce(int* buffer, int frames) {
    for (int channel = 0; channel < channels_; ++channel) {
        const int first = channel * kChannelFrames;
        if (isWide_)
            ResampleWide(MakeSpan(wide_.data() + first, Rows(), buffer + channel, frames));
        else
            SoundKernels().resample(
                MakeSpan(narrow_.data() + first, PackedRows(), buffer + channel, frames));
    }
    const std::int64_t advance = phase_ + std::int64_t{frames} * Step();
    readIndex_ += advance / Phases();
    phase_ = static_cast<int>(advance % Phases());
}

int LSRCConvertRate::Scale(std::int64_t inputFrames) const {
    return Clamp32(inputFrames * Phases() / Step());
}

// The phase is left out, so that several frames in a row may share a position when the rate goes
// up.
int LSRCConvertRate::GetPositionSample() const {
    const std::int64_t fromEnd = heldFrames_ - readIndex_ - kFilterDelay;
    const int blockFrames = heldFrames_ - kOverlap;
    if (blockFrames == 0)
        return Scale(inner_->GetPositionSample() - fromEnd);
    // A source that winds moves its position by more or less than what was read, or not at all.
    return Scale(blockEnd_ - fromEnd * (blockEnd_ - blockStart_) / blockFrames);
}

int LSRCConvertRate::GetEndSample() const {
    const std::int64_t end = inner_->GetEndSample();
    if (IsWindingBack())
        return std::max(Scale(end), Clamp32(std::int64_t{GetPositionSample()} + ReadyFrames() + 1));
    return inner_->IsStreaming() ? Scale(end - kStreamingReserve) - 1 : Scale(end);
}

int LSRCConvertRate::OriginFrame(int frame) const {
    return inner_->OriginFrame(Clamp32(FloorDivide(std::int64_t{frame} * Step(), Phases())));
}

void LSRCConvertRate::Seek(int frame) {
    const std::int64_t advance = std::int64_t{frame} * Step();
    const std::int64_t inputFrame = FloorDivide(advance, Phases());
    const int target = Clamp32(inputFrame - kPreReadFrames);
    inner_->Seek(target);
    Reset();
    phase_ = static_cast<int>(advance - inputFrame * Phases());
    // A source that cannot go before its start delivers fewer frames; silence stands for the rest.
    const int missing = Clamp32(std::clamp<std::int64_t>(
        std::int64_t{inner_->GetPositionSample()} - target, 0, kPreReadFrames));
    inner_->Read(block_.data(), kPreReadFrames - missing);
    for (int channel = 0; channel < channels_; ++channel) {
        std::int32_t* const out =
            wide_.data() + channel * kChannelFrames + kOverlap - kPreReadFrames + missing;
        for (int i = 0; i < kPreReadFrames - missing; ++i)
            out[i] = block_[Size(i * channels_ + channel)];
    }
}
