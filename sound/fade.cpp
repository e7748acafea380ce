#include "sound/fade.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr float kBackMilliseconds = 300;
constexpr std::int64_t kShortestMilliseconds = 50;

}  // namespace

void LFade::Out(int milliseconds) {
    outMilliseconds_.store(std::max(milliseconds, 1), std::memory_order_relaxed);
}

void LFade::Back() {
    outMilliseconds_.store(0, std::memory_order_relaxed);
}

void LFade::Apply(int* samples, int frames, int channels, int rate, std::int64_t unheard) {
    const int asked = outMilliseconds_.load(std::memory_order_relaxed);
    if (asked != std::exchange(asked_, asked))
        out_ = static_cast<int>(std::max(asked - unheard * 1000 / rate, kShortestMilliseconds));
    if (asked == 0 && level_ >= 1)
        return;
    const float milliseconds = asked > 0 ? -static_cast<float>(out_) : kBackMilliseconds;
    const float step = 1000 / (milliseconds * static_cast<float>(rate));
    for (int frame = 0; frame < frames; ++frame) {
        level_ = std::clamp(level_ + step, 0.0F, 1.0F);
        // Even to the ear, which hears ratios: the end of a straight line would be a fall.
        const float gain = level_ * level_;
        for (int channel = 0; channel < channels; ++channel, ++samples)
            *samples = static_cast<int>(std::lround(static_cast<float>(*samples) * gain));
    }
}
