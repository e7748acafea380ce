// How far a card has played what it was given.
#pragma once

#include <chrono>
#include <cstdint>
#include <limits>

// Counts in frames of the card since playback began. One thread.
class CardClock {
public:
    using Time = std::chrono::steady_clock::time_point;

    // rate: frames a second, at least 1; serves until the card's own pace is known.
    void Begin(int rate, Time now);
    // The card is empty: what was written counts as heard, or as lost.
    void Empty(Time now);
    void Wrote(int frames, Time now);
    // What the card said: frames written but not yet heard.
    void NoteDelay(std::int64_t delay, Time now);
    // Nothing is asked of the card, so standing still is no fault.
    void Rest(Time now) { moved_ = now; }

    std::int64_t Written() const { return written_; }
    std::int64_t Heard() const { return heard_; }
    std::int64_t Unheard() const { return written_ - heard_; }
    int MillisecondsUntil(std::int64_t frame) const;

    // Of a card that stopped just now: whether it had played everything, going by its pace. Taken
    // for granted while that is unknown.
    bool HadRunDry(Time now) const;
    // What a sound server says to be unheard when it has played everything: its own latency, which
    // stays. Nothing has moved for longer than that much sound takes.
    bool IsLeftOver(Time now) const;
    // Neither took nor played a frame for five seconds.
    bool StandsStill(Time now) const;

private:
    std::int64_t written_ = 0;
    std::int64_t heard_ = 0;
    // As the card said it: below 0 while its delay is longer than what was written.
    std::int64_t furthest_ = std::numeric_limits<std::int64_t>::min();
    Time noted_;  // when heard_ was told
    Time moved_;
    bool isPaceBased_ = false;  // the pace is measured from here on
    std::int64_t paceHeard_ = 0;
    Time paceTime_;
    double pace_ = 0;  // frames a second, 0 while unknown
    int rate_ = 1;
};
