#include "playback/dialogs/play_glide.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kToldEvery = 0.25;  // seconds
constexpr double kLongest = 0.5;     // seconds without being told
constexpr double kFar = 0.3;         // seconds at that pace

}  // namespace

void PlayGlide::Rest(double position) {
    from_ = position;
    pace_ = 0;
}

void PlayGlide::Told(double position, double pace, Time now) {
    const double shown = At(now);
    const bool goesOn = pace_ != 0 && std::abs(position - shown) <= std::abs(pace) * kFar;
    from_ = goesOn ? shown : position;
    pace_ = goesOn ? pace + (position - shown) / kToldEvery : pace;
    since_ = now;
}

double PlayGlide::At(Time now) const {
    return from_ + pace_ * std::clamp(Seconds(now), 0.0, kLongest);
}

bool PlayGlide::IsMoving(Time now) const {
    return pace_ != 0 && Seconds(now) < kLongest;
}

double PlayGlide::Seconds(Time now) const {
    return std::chrono::duration<double>(now - since_).count();
}
