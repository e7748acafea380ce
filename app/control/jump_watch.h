// Tells a jump in a sound's time from its ordinary course.
#pragma once

#include <algorithm>
#include <cstdint>

#include "sound/sound_time.h"

class JumpWatch {
public:
    // Each time as it is told. pace: of the sound's time against the clock's, 0 while it rests.
    // now: microseconds of a clock that only goes on.
    bool IsJump(LSoundTime time, double pace, std::int64_t now) {
        const double passed = static_cast<double>(now - now_) / 1000 * pace_;
        const int ahead = time.Milliseconds() - time_.Milliseconds() - static_cast<int>(passed);
        const bool isJump = time < time_ || ahead > kMostAheadMilliseconds + late_;
        late_ = isJump ? 0 : std::clamp(late_ - ahead, 0, kMostLateMilliseconds);
        time_ = time;
        pace_ = pace;
        now_ = now;
        return isJump;
    }

private:
    static constexpr int kMostAheadMilliseconds = 500;
    static constexpr int kMostLateMilliseconds = 2000;

    LSoundTime time_;
    int late_ =
        0;  // milliseconds that the times told last were behind, which the next may catch up
    double pace_ = 0;
    std::int64_t now_ = 0;
};
