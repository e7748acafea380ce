#include "books/loudness.h"

#include <algorithm>
#include <cmath>

#include "sound/convert.h"

namespace {

constexpr int kFullSample = 524288;
constexpr double kHighestPeak = 0.85;  // 1.4 dB below full scale

double FactorOf(const LevelStretch& level) {
    return std::pow(10, level.change / 2000.0);
}

class LevelSource final : public LSoundProcessBase {
public:
    LevelSource(const LSoundSource& inner, std::vector<LevelStretch> levels)
        : LSoundProcessBase(inner), levels_(std::move(levels)) {
        double loudest = 0;
        for (const LevelStretch& level : levels_)
            loudest = std::max(loudest, FactorOf(level));
        peakMagnitude_ = static_cast<int>(std::min(peakMagnitude_ * loudest, 1e9));
    }
    void Read(int* buffer, int frames) override {
        int at = inner_->GetPositionSample();
        inner_->Read(buffer, frames);
        while (frames > 0) {
            const auto next = std::upper_bound(
                levels_.begin(), levels_.end(), at,
                [](int frame, const LevelStretch& level) { return frame < level.first; });
            const int part = next == levels_.end() ? frames : std::min(frames, next->first - at);
            const double factor = FactorOf(*(next == levels_.begin() ? next : next - 1));
            int* const end = buffer + static_cast<std::ptrdiff_t>(part) * Channels();
            std::transform(buffer, end, buffer, [factor](int sample) {
                return static_cast<int>(std::lrint(sample * factor));
            });
            buffer = end;
            at += part;
            frames -= part;
        }
    }

private:
    std::vector<LevelStretch> levels_;
};

}  // namespace

LoudnessMeter::LoudnessMeter(const LSoundSourceBase& source)
    : meter_(ebur128_init(source.Channels(), static_cast<unsigned long>(source.SampleRate()),
                          EBUR128_MODE_I | EBUR128_MODE_HISTOGRAM)),
      rate_(source.SampleRate()),
      channels_(source.Channels()) {}

void LoudnessMeter::Add(const int* samples, int frames) {
    frames_ += frames;
    if (meter_ == nullptr)
        return;
    scaled_.resize(static_cast<std::size_t>(frames) * channels_);
    std::transform(samples, samples + scaled_.size(), scaled_.begin(), [](int sample) {
        return static_cast<int>(std::clamp<long long>(sample * 4096LL, -2147483647, 2147483647));
    });
    ebur128_add_frames_int(meter_.get(), scaled_.data(), static_cast<std::size_t>(frames));
}

double LoudnessMeter::Loudness() const {
    double loudness = kBookLoudness;
    if (meter_ != nullptr)
        ebur128_loudness_global(meter_.get(), &loudness);
    return loudness;
}

LSoundSource Louder(const LSoundSource& source, std::vector<LevelStretch> levels) {
    const LSoundSource louder(new LevelSource(source, std::move(levels)));
    return LSPPeakLimit(static_cast<int>(kHighestPeak * kFullSample)).OpenSource(louder);
}
