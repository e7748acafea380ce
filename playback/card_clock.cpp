#include "playback/card_clock.h"

#include <algorithm>

namespace {

using std::chrono::duration;
using std::chrono::seconds;

constexpr seconds kStandstill(5);
constexpr duration<double> kPaceSpan(0.5);
constexpr duration<double> kLeastPaceSpan(0.1);  // cards count in steps, some of many milliseconds
constexpr duration<double> kMostLeft(0.5);       // a latency; more is a server that does not play
constexpr duration<double> kLeftMargin(0.2);
constexpr int kMovementsPerSecond = 50;
constexpr double kDrySeconds = 0.02;  // how exactly the moment of running dry is known

}  // namespace

void CardClock::Begin(int rate, Time now) {
    *this = CardClock();
    rate_ = rate;
    noted_ = now;
    moved_ = now;
}

void CardClock::Empty(Time now) {
    heard_ = furthest_ = written_;
    noted_ = now;
    moved_ = now;
    isPaceBased_ = false;
}

void CardClock::Wrote(int frames, Time now) {
    if (Unheard() == 0)
        noted_ = now;
    written_ += frames;
    moved_ = now;
}

void CardClock::NoteDelay(std::int64_t delay, Time now) {
    const std::int64_t heard = std::clamp(written_ - delay, heard_, written_);
    noted_ = now;
    // Also while a server is yet to begin with what was written. A latency that goes up and down is
    // no movement.
    if (written_ - delay > furthest_ + rate_ / kMovementsPerSecond) {
        furthest_ = written_ - delay;
        moved_ = now;
    }
    if (heard == heard_)
        return;
    heard_ = heard;
    const duration<double> span = now - paceTime_;
    if (isPaceBased_ && span > kLeastPaceSpan)
        pace_ = static_cast<double>(heard_ - paceHeard_) / span.count();
    if (!isPaceBased_ || span > kPaceSpan) {
        isPaceBased_ = true;
        paceHeard_ = heard_;
        paceTime_ = now;
    }
}

int CardClock::MillisecondsUntil(std::int64_t frame) const {
    const double wait = static_cast<double>(frame - heard_) / (pace_ > 0 ? pace_ : rate_);
    return static_cast<int>(std::clamp(wait, 0.0, 3600.0) * 1000) + 1;
}

bool CardClock::HadRunDry(Time now) const {
    const duration<double> since = now - noted_;
    return pace_ == 0 || static_cast<double>(Unheard()) <= pace_ * (since.count() + kDrySeconds);
}

bool CardClock::IsLeftOver(Time now) const {
    const duration<double> left(static_cast<double>(Unheard()) / rate_);
    return Unheard() > 0 && left < kMostLeft && now - moved_ > left + kLeftMargin;
}

bool CardClock::StandsStill(Time now) const {
    return now - moved_ > kStandstill;
}
