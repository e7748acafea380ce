// How a level meter's bars move: up at once, down smoothly, with a mark that holds the peak.
#pragma once

#include <array>
#include <cstdint>

#include "sound/level.h"

// Knows no clock: every call brings its time, in microseconds that never go back.
class LMeterBallistics {
public:
    static constexpr int kLowest = -36;  // decibels; an empty bar
    static constexpr int kHighest = 15;  // the level of a square wave at full scale
    static constexpr int kFallPerSecond = 30;
    static constexpr int kPeakFallPerSecond = 20;
    static constexpr std::int64_t kPeakHold = 1'500'000;

    // One bar for each channel of `levels`. Channels that are new start without history.
    void SetLevels(const LDBMC& levels, std::int64_t now);

    const LDBMC& Levels() const { return levels_; }  // as last set
    // Within kLowest to kHighest, in fractions of a decibel.
    double Bar(int channel, std::int64_t now) const;
    double Peak(int channel, std::int64_t now) const;  // never below the bar
    bool IsMoving(std::int64_t now) const;             // whether a later picture will differ

private:
    struct Fall {
        double from = kLowest;
        std::int64_t since = 0;  // may lie ahead: the mark is being held
        double At(std::int64_t now, int perSecond) const;
    };
    struct Channel {
        Fall bar;
        Fall peak;
    };
    const Channel& Of(int channel) const { return channels_[static_cast<std::size_t>(channel)]; }
    double Target(int channel) const;

    LDBMC levels_;
    std::array<Channel, 255> channels_;
};
