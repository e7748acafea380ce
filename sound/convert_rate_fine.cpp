#include "sound/convert_rate_fine.h"

#include <soxr.h>

#include <algorithm>
#include <limits>
#include <numeric>

namespace {

constexpr double kPassBand = 0.95;  // of half the lower rate
constexpr int kLowestRate = 100;
constexpr int kHighestRateConverted = 1000000;
// The filter reaches so far back, at the lower rate.
constexpr int kFilterReach = 4096;
constexpr int kStreamingPollFrames = 64;  // asked for when a streaming source has none
constexpr int kWindingBackFrames = 512;   // read at once towards frame 0, behind which is silence
constexpr int kLargestUndoubledPeak = 1048576;

int ClampToInt(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

std::int64_t DivideDown(std::int64_t value, std::int64_t divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

}  // namespace

bool LSRCConvertRateFine::CanConvert(int inputRate, int outputRate) {
    return std::min(inputRate, outputRate) >= kLowestRate &&
           std::max(inputRate, outputRate) <= kHighestRateConverted;
}

void LSRCConvertRateFine::SoxrDeleter::operator()(soxr* converter) const {
    soxr_delete(converter);
}

LSRCConvertRateFine::LSRCConvertRateFine(const LSoundSource& inner, int rate)
    : LSoundProcessBase(inner),
      inputRate_(inner->SampleRate() / std::gcd(inner->SampleRate(), rate)),
      outputRate_(rate / std::gcd(inner->SampleRate(), rate)),
      converter_(Open()),
      input_(static_cast<std::size_t>(kMaxBlockFrames) * channels_) {
    sampleRate_ = rate;
    if (peakMagnitude_ <= kLargestUndoubledPeak)
        peakMagnitude_ *= 2;  // the filter overshoots
    if (converter_ == nullptr)
        status_ = SoundStatus::kInvalidFormat;
    else if (inner->IsStreaming())
        lag_ = MeasureLag();
}

LSRCConvertRateFine::Converter LSRCConvertRateFine::Open() const {
    soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    quality.passband_end = kPassBand;
    const soxr_io_spec_t samples = soxr_io_spec(SOXR_INT32_I, SOXR_INT32_I);
    return Converter(soxr_create(static_cast<double>(inputRate_), static_cast<double>(outputRate_),
                                 channels_, nullptr, &samples, &quality, nullptr));
}

// The most that is ever held back; the library does not tell. It works in blocks of its own, of
// which several fit into what is tried here.
int LSRCConvertRateFine::MeasureLag() const {
    const Converter trial = Open();
    if (trial == nullptr)
        return 0;
    constexpr int kStep = 64;
    std::vector<int> silence(static_cast<std::size_t>(kStep) * channels_);
    std::vector<int> made(static_cast<std::size_t>(kMaxBlockFrames) * channels_);
    std::int64_t lag = 0;
    std::int64_t fed = 0;
    std::int64_t got = 0;
    while (fed < 4 * lag || fed < 2 * kMaxBlockFrames) {
        std::size_t done = 0;
        soxr_process(trial.get(), silence.data(), kStep, nullptr, made.data(), kMaxBlockFrames,
                     &done);
        fed += kStep;
        got += static_cast<std::int64_t>(done);
        while (done == kMaxBlockFrames) {
            soxr_process(trial.get(), silence.data(), 0, nullptr, made.data(), kMaxBlockFrames,
                         &done);
            got += static_cast<std::int64_t>(done);
        }
        lag = std::max(lag, fed - got * inputRate_ / outputRate_);
    }
    return ClampToInt(lag + kStep);
}

std::int64_t LSRCConvertRateFine::HeldFrames() const {
    return static_cast<std::int64_t>((made_.size() - nextMade_) / channels_);
}

void LSRCConvertRateFine::Read(int* buffer, int frames) {
    if (converter_ == nullptr) {
        std::fill_n(buffer, frames * channels_, 0);
        return;
    }
    while (frames > 0) {
        std::int64_t count = std::min<std::int64_t>(frames, silence_);
        if (count > 0) {
            std::fill_n(buffer, count * channels_, 0);
            silence_ -= count;
        } else if (HeldFrames() == 0) {
            Refill();
            continue;
        } else {
            count = std::min<std::int64_t>(frames, HeldFrames());
            std::copy_n(made_.begin() + static_cast<std::ptrdiff_t>(nextMade_), count * channels_,
                        buffer);
            nextMade_ += static_cast<std::size_t>(count) * channels_;
            taken_ += count;
        }
        buffer += count * channels_;
        frames -= static_cast<int>(count);
    }
}

int LSRCConvertRateFine::RefillFrames() const {
    const int most = IsWindingBack() ? kWindingBackFrames : kMaxBlockFrames;
    if (!inner_->IsStreaming())
        return most;
    const std::int64_t available =
        std::int64_t{inner_->GetEndSample()} - inner_->GetPositionSample();
    return available < 1 ? kStreamingPollFrames
                         : static_cast<int>(std::min<std::int64_t>(most, available));
}

void LSRCConvertRateFine::Refill() {
    blockFrames_ = RefillFrames();
    blockStart_ = inner_->GetPositionSample();
    inner_->Read(input_.data(), blockFrames_);
    blockEnd_ = inner_->GetPositionSample();
    fed_ += blockFrames_;
    made_.clear();
    nextMade_ = 0;
    const auto wanted =
        static_cast<std::size_t>(blockFrames_ * outputRate_ / inputRate_) + kMaxBlockFrames;
    const int* from = input_.data();  // never null: that would end the stream
    auto left = static_cast<std::size_t>(blockFrames_);
    for (std::size_t done = wanted; left > 0 || done == wanted;) {
        const std::size_t held = made_.size();
        made_.resize(held + wanted * channels_);
        std::size_t used = 0;
        soxr_process(converter_.get(), from, left, &used, made_.data() + held, wanted, &done);
        made_.resize(held + done * channels_);
        from += used * channels_;
        left -= used;
    }
    const std::int64_t dropped = std::min(toDrop_, HeldFrames());
    nextMade_ = static_cast<std::size_t>(dropped) * channels_;
    toDrop_ -= dropped;
    taken_ += dropped;
}

int LSRCConvertRateFine::Scale(std::int64_t inputFrames) const {
    return ClampToInt(DivideDown(inputFrames * outputRate_ + inputRate_ / 2, inputRate_));
}

int LSRCConvertRateFine::GetPositionSample() const {
    // What was fed and not heard, times the output rate.
    const std::int64_t unheard = fed_ * outputRate_ - (taken_ + toDrop_) * inputRate_;
    std::int64_t position = 0;
    if (blockFrames_ == 0) {
        position = std::int64_t{inner_->GetPositionSample()} * outputRate_ - unheard;
    } else {
        // A source that winds moves its position by more or less than what was read, or not at all.
        const double moved = static_cast<double>(blockEnd_ - blockStart_) / blockFrames_;
        position = blockEnd_ * outputRate_ -
                   (moved == 1.0 ? unheard
                                 : static_cast<std::int64_t>(static_cast<double>(unheard) * moved));
    }
    return ClampToInt(DivideDown(position, inputRate_) - silence_);
}

int LSRCConvertRateFine::GetEndSample() const {
    const std::int64_t end = inner_->GetEndSample();
    if (IsWindingBack())
        return std::max(Scale(end),
                        ClampToInt(std::int64_t{GetPositionSample()} + HeldFrames() + 1));
    if (!inner_->IsStreaming())
        return Scale(end);
    return ClampToInt(DivideDown((end - lag_) * outputRate_, inputRate_));
}

int LSRCConvertRateFine::OriginFrame(int frame) const {
    return inner_->OriginFrame(
        ClampToInt(DivideDown(std::int64_t{frame} * inputRate_, outputRate_)));
}

// Begins where an input frame and an output frame fall together, far enough ahead for the filter.
void LSRCConvertRateFine::Seek(int frame) {
    const std::int64_t reach =
        kFilterReach * std::max<std::int64_t>(1, DivideDown(inputRate_, outputRate_) + 1);
    const std::int64_t target = std::max(frame, 0);
    const std::int64_t period = std::max<std::int64_t>(
        0, DivideDown(target * inputRate_ / outputRate_ - reach, inputRate_));
    silence_ = std::max<std::int64_t>(0, -std::int64_t{frame});
    toDrop_ = target - period * outputRate_;
    inner_->Seek(ClampToInt(period * inputRate_));
    if (converter_ != nullptr)
        soxr_clear(converter_.get());
    made_.clear();
    nextMade_ = 0;
    fed_ = 0;
    taken_ = 0;
    blockStart_ = blockEnd_ = 0;
    blockFrames_ = 0;
}
