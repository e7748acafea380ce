// What the narrator tells its receivers.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "app/reading/reading_state.h"
#include "playback/player_transport.h"
#include "sound/sound_time.h"
#include "speech/speech_track.h"

// What there is to know of a reading at a moment.
struct ReadingNews {
    ReadingState state = ReadingState::kIdle;
    ReadingState before = ReadingState::kIdle;  // the same unless the state is what is new
    ReadingEnd end = ReadingEnd::kNone;         // why it ended
    PlayTrouble trouble = PlayTrouble::kNone;   // of the card
    LSoundTime time;                            // being heard
    LSoundTime length;
    bool isLengthKnown = false;            // else it is an estimate
    bool isMove = false;                   // it waits for the sound of a place that it moved to
    bool isForText = false;                // it waits for more of the text itself
    bool isJump = false;                   // the user has just moved to another place
    std::string title;                     // what is read is called
    std::optional<SpokenStretch> stretch;  // being heard, in bytes of the text
    std::size_t chapter = 0;               // being heard, from 1 on; 0: before the first
    std::size_t chapters = 0;              // of the text
    // What the user is to be told, once: of an end, or of a reading that went well with something
    // left out.
    std::string note;
    std::string route;  // what keeps the sound from the card that was chosen; empty when nothing

    bool IsNew() const { return state != before; }
    bool HasBegun() const { return IsNew() && !IsReading(before) && IsReading(state); }
};

// "Chapter 3 of 12"; empty before the first, and where there are none.
std::string ChapterOf(const ReadingNews& news);
