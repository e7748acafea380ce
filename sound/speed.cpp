#include "sound/speed.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <numbers>

namespace {

constexpr int kSegmentsPerSecond = 90;
constexpr int kMinSegment = 20;
constexpr int kMaxSegment = 2730;
constexpr int kUnity = 16777216;
constexpr double kHighestFactor = 1000.0;
constexpr int kFractionBits = 16;
constexpr int kGainBits = 24;

std::int64_t Fixed(int frames) {
    return std::int64_t{frames} << kFractionBits;
}
std::int64_t Whole(std::int64_t position) {
    return position >> kFractionBits;
}

std::int64_t AdvanceFor(double factor, int segment) {
    const double bounded =
        std::isnan(factor) ? 1.0 : std::clamp(factor, -kHighestFactor, kHighestFactor);
    return std::llround(bounded * segment * (1 << kFractionBits));
}

std::size_t Samples(int frames, int channels) {
    return static_cast<std::size_t>(frames) * static_cast<std::size_t>(channels);
}

}  // namespace

LSRCSpeed::LSRCSpeed(const LSoundSource& inner, double startFactor, double endFactor,
                     LSoundTime ramp)
    : LSoundProcessBase(inner),
      segment_(std::clamp(inner->SampleRate() / kSegmentsPerSecond, kMinSegment, kMaxSegment)),
      reach_(segment_ / 2),
      startAdvance_(AdvanceFor(startFactor, segment_)),
      endAdvance_(AdvanceFor(endFactor, segment_)),
      rampSegments_(std::max(ramp.ToFrames(inner->SampleRate()), 0) / segment_),
      cache_(inner),
      fading_(Samples(segment_, channels_)),
      places_(Samples(2 * (segment_ + reach_), channels_)),
      output_(Samples(segment_, channels_)) {
    static_assert(3 * kMaxSegment <= LFrameCache::kMaxFetchFrames);
    const int half = segment_ / 2;
    for (int i = 0; i < segment_; ++i) {
        const double angle = std::numbers::pi * (i - half) / (segment_ - half);
        window_.push_back(
            i < half ? kUnity : static_cast<int>(std::lround(kUnity * (1 + std::cos(angle)) / 2)));
    }
    Restart(inner->GetPositionSample());
}

void LSRCSpeed::Restart(int frame) {
    position_ = Fixed(frame);
    advance_ = 0;
    segmentCount_ = 0;
    readPosition_ = segment_;
    isStarted_ = false;
}

void LSRCSpeed::Read(int* buffer, int frames) {
    while (frames > 0) {
        if (readPosition_ == segment_)
            ReBuffer();
        const int count = std::min(frames, segment_ - readPosition_);
        std::copy_n(output_.data() + readPosition_ * channels_, count * channels_, buffer);
        readPosition_ += count;
        buffer += count * channels_;
        frames -= count;
    }
}

// Input frames of the coming segment.
std::int64_t LSRCSpeed::Advance() const {
    if (segmentCount_ >= rampSegments_)
        return endAdvance_;
    return startAdvance_ + (endAdvance_ - startAdvance_) * segmentCount_ / rampSegments_;
}

// Fills places_ in playing order.
void LSRCSpeed::Load(std::int64_t from, int frames, bool isBackwards) {
    const int* const loaded = cache_.Fetch(isBackwards ? from - frames : from, frames, isBackwards);
    if (!isBackwards) {
        std::copy_n(loaded, Samples(frames, channels_), places_.begin());
        return;
    }
    for (int i = 0; i < frames; ++i)
        std::copy_n(loaded + (frames - 1 - i) * channels_, channels_,
                    places_.begin() + i * channels_);
}

void LSRCSpeed::ReBuffer() {
    position_ = std::clamp(position_ + advance_, Fixed(-4 * segment_),
                           Fixed(std::numeric_limits<int>::max()));
    advance_ = Advance();
    const bool isBackwards = advance_ < 0;
    if (!isStarted_) {
        Load(Whole(position_), segment_, isBackwards);
        std::copy_n(places_.begin(), fading_.size(), fading_.begin());
        isStarted_ = true;
    }
    // A place's continuation, which begins a segment behind it, is what is wanted; the search goes
    // either way from there.
    const std::int64_t wanted = Whole(position_ + advance_);
    const int before = segment_ + reach_;
    Load(isBackwards ? wanted + before : wanted - before, 2 * before, isBackwards);
    const int* const place = places_.data() + FindPlace() * channels_;
    Mix(place);
    std::copy_n(place + segment_ * channels_, fading_.size(), fading_.begin());
    ++segmentCount_;
    readPosition_ = 0;
}

// Index in places_ of the best match, the nearest to the wanted place among equals.
int LSRCSpeed::FindPlace() const {
    int best = reach_;
    std::int64_t smallest = std::numeric_limits<std::int64_t>::max();
    for (int distance = 0; distance <= reach_; ++distance) {
        for (const int index : {reach_ - distance, reach_ + distance}) {
            const std::int64_t difference =
                Difference(places_.data() + index * channels_, smallest);
            if (difference < smallest) {
                smallest = difference;
                best = index;
            }
        }
    }
    return best;
}

// Sum of magnitudes over every other frame of the fade; may stop once it is no better than the
// limit.
std::int64_t LSRCSpeed::Difference(const int* place, std::int64_t limit) const {
    const int step = 2 + segment_ / 512;  // high rates hold nothing more that tells places apart
    std::int64_t sum = 0;
    for (int frame = segment_ / 2; frame < segment_ && sum < limit; frame += step) {
        for (int channel = 0; channel < channels_; ++channel) {
            const int index = frame * channels_ + channel;
            sum += std::abs(std::int64_t{place[index]} - fading_[static_cast<std::size_t>(index)]);
        }
    }
    return sum;
}

void LSRCSpeed::Mix(const int* place) {
    std::size_t index = 0;
    for (const int gain : window_) {
        for (int channel = 0; channel < channels_; ++channel, ++index) {
            const std::int64_t mixed =
                std::int64_t{fading_[index]} * gain + std::int64_t{place[index]} * (kUnity - gain);
            output_[index] = static_cast<int>(mixed >> kGainBits);
        }
    }
}

int LSRCSpeed::GetPositionSample() const {
    const std::int64_t position = position_ + advance_ * readPosition_ / segment_;
    return static_cast<int>(
        std::clamp<std::int64_t>(Whole(position), 0, std::numeric_limits<int>::max()));
}

int LSRCSpeed::GetEndSample() const {
    const int end = inner_->GetEndSample();
    const int position = GetPositionSample();
    if (Advance() < 0)
        return position > 0 ? std::max(end, position + segment_) : position;
    if (!inner_->IsStreaming())
        return end;
    const std::int64_t furthest = std::max(startAdvance_, endAdvance_);
    return static_cast<int>(std::max<std::int64_t>(end - Whole(furthest) - 3 * segment_, 0));
}

void LSRCSpeed::Seek(int frame) {
    Restart(frame);
}

LSoundSource LSPSpeed::OpenSource(const LSoundSource& source) const {
    if (source->Status() != SoundStatus::kGood)
        return source;
    return LSoundSource(new LSRCSpeed(source, startFactor_, endFactor_, ramp_));
}
