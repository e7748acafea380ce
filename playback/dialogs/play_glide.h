// Where playback is between two positions that were told, for a picture that moves smoothly.
#pragma once

#include <chrono>

class PlayGlide {
public:
    using Time = std::chrono::steady_clock::time_point;

    void Rest(double position);  // frames; it stands there
    // Heard right now, going on at that pace (frames a second, negative backwards). Small errors of
    // what was shown are made up for until the next position is due; far ones by a jump.
    void Told(double position, double pace, Time now);
    double At(Time now) const;
    bool IsMoving(Time now) const;  // what is no longer told anything stands still

private:
    double Seconds(Time now) const;

    double from_ = 0;
    double pace_ = 0;
    Time since_;
};
