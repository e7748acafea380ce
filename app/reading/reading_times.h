// Where the places of a text stand in time while only a part of it has been spoken: by the sound
// that is there, before and behind it by the pace of what was spoken so far.
#pragma once

#include <cstddef>
#include <string_view>

#include "sound/sound_time.h"

// Milliseconds a byte, as the text's scripts are spoken: by its beginning.
double UsualPace(std::string_view text);

// Places are bytes of the text. The present part's own times never change; those before it are
// shared out evenly, those behind it are estimates that get better. GUI thread.
class ReadingTimes {
public:
    ReadingTimes() = default;
    // A text of which nothing is spoken yet; it is spoken from a place on. Milliseconds a byte are
    // what its letters may take.
    ReadingTimes(std::size_t size, std::size_t begin, double usualPace);

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

    std::size_t size_ = 0;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    double usualPace_ = 0;
    int beginMs_ = 0;
    int soundMs_ = 0;          // from begin_ to end_
    double earlierBytes_ = 0;  // of the parts before
    double earlierMs_ = 0;
};
