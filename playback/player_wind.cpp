#include "playback/player_wind.h"

#include <algorithm>

#include "sound/speed.h"

namespace {

constexpr LSoundTime kRamp(8000);

}  // namespace

LSoundSource PlayerWind::Begin(Way way, Before before, const LSoundSource& source) {
    way_ = way;
    before_ = before;
    isOn_ = true;
    const bool wasPlaying = before == Before::kPlaying;
    if (way == Way::kForward) {
        first_ = wasPlaying ? 1.5 : 0.1;
        last_ = wasPlaying ? 7.0 : 3.0;
    } else {
        first_ = wasPlaying ? -0.5 : -0.1;
        last_ = wasPlaying ? -7.0 : -3.0;
    }
    begin_ = g_get_monotonic_time();
    // The factors are those of the source's time.
    const double pace = static_cast<double>(source->TimeRate()) / source->SampleRate();
    return LSPSpeed(first_ * pace, last_ * pace, kRamp).OpenSource(source);
}

PlayerWind::Before PlayerWind::End() {
    isOn_ = false;
    return before_;
}

double PlayerWind::Factor() const {
    const double milliseconds = static_cast<double>(g_get_monotonic_time() - begin_) / 1000;
    return first_ + (last_ - first_) * std::min(milliseconds / kRamp.Milliseconds(), 1.0);
}
