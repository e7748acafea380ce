#include "books/loudness.h"

#include <ebur128.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "sound/convert.h"

namespace {

constexpr int kFullSample = 524288;
constexpr double kHighestPeak = 0.85;  // 1.4 dB below full scale

struct MeterCloser {
    void operator()(ebur128_state* meter) const { ebur128_destroy(&meter); }
};

class GainSource final : public LSoundProcessBase {
public:
    GainSource(const LSoundSource& inner, double factor)
        : LSoundProcessBase(inner), factor_(factor) {
        peakMagnitude_ = static_cast<int>(std::min(peakMagnitude_ * factor, 1e9));
    }
    void Read(int* buffer, int frames) override {
        inner_->Read(buffer, frames);
        std::transform(buffer, buffer + frames * Channels(), buffer, [this](int sample) {
            return static_cast<int>(std::lrint(sample * factor_));
        });
    }

private:
    double factor_;
};

}  // namespace

double LoudnessOf(const LSoundSource& source) {
    const std::unique_ptr<ebur128_state, MeterCloser> meter(
        ebur128_init(source->Channels(), static_cast<unsigned long>(source->SampleRate()),
                     EBUR128_MODE_I | EBUR128_MODE_HISTOGRAM));
    if (meter == nullptr)
        return kBookLoudness;
    std::vector<int> block(static_cast<std::size_t>(kMaxBlockFrames) * source->Channels());
    for (int left = source->GetEndSample() - source->GetPositionSample(); left > 0;) {
        const int frames = std::min(left, kMaxBlockFrames);
        source->Read(block.data(), frames);
        for (int& sample : block)
            sample =
                static_cast<int>(std::clamp<long long>(sample * 4096LL, -2147483647, 2147483647));
        ebur128_add_frames_int(meter.get(), block.data(), static_cast<std::size_t>(frames));
        left -= frames;
    }
    double loudness = 0;
    ebur128_loudness_global(meter.get(), &loudness);
    return loudness;
}

LSoundSource Louder(const LSoundSource& source, double decibels) {
    const LSoundSource louder(new GainSource(source, std::pow(10, decibels / 20)));
    return LSPPeakLimit(static_cast<int>(kHighestPeak * kFullSample)).OpenSource(louder);
}
