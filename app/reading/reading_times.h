// Where the places of a text stand in time while only a part of it has been spoken: by the sound
// that is there, before and behind it by the pace of what was spoken so far.
#pragma once

#include <cstddef>

#include "sound/sound_time.h"

// Places are bytes of the text. The present part's own times never change; those before it are
// shared out evenly, those behind it are estimates that get better. GUI thread.
class ReadingTimes {
public:
    // A text of so many bytes of which nothing is known; it is spoken from a place on.
    ReadingTimes(std::size_t size = 0, std::size_t begin = 0);

    // The present part has been spoken up to that place, in that time.
    void SetSpoken(std::size_t end, LSoundTime sound);
    void Grow(std::size_t size) { size_ = size; }  // more has come of the text
    // The speech goes on from there on: what was spoken until now is only known by its pace.
    void GoOnFrom(std::size_t place);

    std::size_t Size() const { return size_; }
    LSoundTime PartBegin() const { return LSoundTime(beginMs_); }  // its first sound
    LSoundTime Length() const { return TimeOf(size_); }
    LSoundTime TimeOf(std::size_t place) const;
    std::size_t PlaceAt(LSoundTime time) const;

private:
    double Pace() const;  // milliseconds a byte, behind what is spoken

    std::size_t size_;
    std::size_t begin_;
    std::size_t end_;
    int beginMs_ = 0;
    int soundMs_ = 0;          // from begin_ to end_
    double earlierBytes_ = 0;  // of the parts before
    double earlierMs_ = 0;
};
