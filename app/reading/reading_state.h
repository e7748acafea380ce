// The states of a reading, and which may follow which.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

enum class ReadingState : std::uint8_t {
    kIdle,             // there is no text
    kWaitingForVoice,  // the engine has not told its voices yet
    kWaitingForSound,  // it speaks, and nothing is heard: at the start, or slower than speech
    kPlaying,
    kPaused,
    kEnded,  // ReadingEnd says why; what was spoken can be heard again
};
constexpr std::size_t kReadingStates = 6;

enum class ReadingEnd : std::uint8_t {
    kNone,
    kToItsEnd,
    kStopped,  // by the user, or for another text
    kNoVoice,
    kEngineFailed,
    kCardFailed,
};

// Whether the second may follow the first. A state does not follow itself.
constexpr bool MayFollow(ReadingState from, ReadingState to) {
    constexpr bool x = true;
    constexpr bool o = false;
    // To: idle, waiting for the voice, for sound, playing, paused, ended.
    constexpr std::array<std::array<bool, kReadingStates>, kReadingStates> kTable{{
        {o, x, x, o, o, o},  // from idle
        {o, o, x, o, o, x},  // from waiting for the voice
        {o, o, o, x, x, x},  // from waiting for sound
        {o, o, x, o, x, x},  // from playing
        {o, o, x, x, o, x},  // from paused
        {x, x, x, x, o, o},  // from ended
    }};
    return kTable[static_cast<std::size_t>(from)][static_cast<std::size_t>(to)];
}

// Somebody waits for it, hears it or has paused it.
constexpr bool IsReading(ReadingState state) {
    return state != ReadingState::kIdle && state != ReadingState::kEnded;
}

const char* NameOf(ReadingState state);  // for the log
