#include "gui/widgets/meter_ballistics.h"

#include <algorithm>

double LMeterBallistics::Fall::At(std::int64_t now, int perSecond) const {
    const auto fallen = static_cast<double>(std::max<std::int64_t>(0, now - since)) * 1e-6;
    return std::max<double>(kLowest, from - fallen * perSecond);
}

double LMeterBallistics::Target(int channel) const {
    return std::clamp(levels_[channel].Value(), kLowest, kHighest);
}

void LMeterBallistics::SetLevels(const LDBMC& levels, std::int64_t now) {
    for (int channel = 0; channel < levels.Channels(); ++channel) {
        Channel& moved = channels_[static_cast<std::size_t>(channel)];
        if (channel >= levels_.Channels())
            moved = Channel{};
        else
            moved.bar = {Bar(channel, now), now};
        const double level = std::clamp(levels[channel].Value(), kLowest, kHighest);
        if (level >= moved.peak.At(now, kPeakFallPerSecond))
            moved.peak = {level, now + kPeakHold};
    }
    levels_ = levels;
}

double LMeterBallistics::Bar(int channel, std::int64_t now) const {
    return std::max(Target(channel), Of(channel).bar.At(now, kFallPerSecond));
}

double LMeterBallistics::Peak(int channel, std::int64_t now) const {
    return std::max(Bar(channel, now), Of(channel).peak.At(now, kPeakFallPerSecond));
}

bool LMeterBallistics::IsMoving(std::int64_t now) const {
    for (int channel = 0; channel < levels_.Channels(); ++channel) {
        // The mark is the last to arrive.
        if (Peak(channel, now) > Target(channel))
            return true;
    }
    return false;
}
