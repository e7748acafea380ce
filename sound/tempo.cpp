#include "sound/tempo.h"

#include <SoundTouch.h>

#include <algorithm>
#include <cmath>

#include "sound/stretching.h"

namespace {

constexpr int kFeedFrames = 1024;
}  // namespace

void LTempo::Set(int percent) {
    percent_.store(std::clamp(percent, kSlowestPercent, kFastestPercent),
                   std::memory_order_relaxed);
}

LTempoSource::LTempoSource(const LSoundSource& inner, std::shared_ptr<const LTempo> tempo)
    : LSoundProcessBase(inner),
      tempo_(std::move(tempo)),
      spokenPercent_(static_cast<int>(
          std::lround(100.0 * inner->SampleRate() / std::max(inner->TimeRate(), 1)))),
      stretcher_(std::make_unique<soundtouch::SoundTouch>()),
      input_(static_cast<std::size_t>(kFeedFrames) * channels_),
      samples_(static_cast<std::size_t>(kMaxBlockFrames) * channels_) {
    stretcher_->setSampleRate(static_cast<unsigned int>(sampleRate_));
    stretcher_->setChannels(channels_);
    SetForSpeech(*stretcher_);
    // Stretched waves meet at other phases: the sum may pass the source's own peak.
    peakMagnitude_ += peakMagnitude_ / 2;
}

LTempoSource::~LTempoSource() = default;

int LTempoSource::Ready() const {
    return static_cast<int>(stretcher_->numSamples());
}

void LTempoSource::FollowTempo() {
    const int percent = tempo_->Percent();
    if (percent == percent_)
        return;
    percent_ = percent;
    stretches_ = true;
    stretcher_->setTempo(Pace());
}

int LTempoSource::GetPositionSample() const {
    const int position = inner_->GetPositionSample();
    if (!stretches_ || position < 0)
        return position;
    // Once flushed, what the library still holds as input is the silence of its flush.
    const double held = flushed_ ? 0.0 : static_cast<double>(stretcher_->numUnprocessedSamples());
    const double behind = held + Ready() * Pace();
    return std::max(0, position - static_cast<int>(std::lround(behind)));
}

int LTempoSource::ReadableFrames() const {
    const int remaining = std::max(0, inner_->GetEndSample() - inner_->GetPositionSample());
    if (!stretches_)
        return remaining;
    if (flushed_)
        return Ready();
    if (!inner_->IsStreaming())
        return Ready() +
               static_cast<int>(std::ceil(
                   (remaining + static_cast<int>(stretcher_->numUnprocessedSamples())) / Pace()));
    // A part of what is still to come stays in the works.
    const int sure =
        static_cast<int>(remaining / Pace()) - (kSequence + kSearch) * sampleRate_ / 1000;
    return Ready() + std::max(0, sure);
}

void LTempoSource::Seek(int frame) {
    stretcher_->clear();
    flushed_ = false;
    FollowTempo();
    stretches_ = percent_ != spokenPercent_;
    inner_->Seek(frame);
}

// False: there is no more to be had now.
bool LTempoSource::Feed() {
    const int remaining = inner_->GetEndSample() - inner_->GetPositionSample();
    if (remaining < 1) {
        if (flushed_ || inner_->IsStreaming())
            return false;
        stretcher_->flush();
        flushed_ = true;
        return Ready() > 0;
    }
    const int frames = std::min(kFeedFrames, remaining);
    inner_->Read(input_.data(), frames);
    const std::size_t count = static_cast<std::size_t>(frames) * channels_;
    for (std::size_t i = 0; i < count; ++i)
        samples_[i] = static_cast<float>(input_[i]) / kStretchScale;
    stretcher_->putSamples(samples_.data(), static_cast<unsigned int>(frames));
    return true;
}

void LTempoSource::Read(int* buffer, int frames) {
    FollowTempo();
    if (!stretches_) {
        inner_->Read(buffer, frames);
        return;
    }
    int done = 0;
    while (done < frames) {
        const int wanted = std::min(frames - done, kMaxBlockFrames);
        const int got = static_cast<int>(
            stretcher_->receiveSamples(samples_.data(), static_cast<unsigned int>(wanted)));
        const std::size_t count = static_cast<std::size_t>(got) * channels_;
        for (std::size_t i = 0; i < count; ++i)
            *buffer++ = static_cast<int>(std::lround(samples_[i] * kStretchScale));
        done += got;
        if (got == 0 && !Feed())
            break;
    }
    std::fill_n(buffer, static_cast<std::size_t>(frames - done) * channels_, 0);
}
