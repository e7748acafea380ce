#include "app/reading/reading_state.h"

const char* NameOf(ReadingState state) {
    constexpr std::array<const char*, kReadingStates> kNames{
        "idle", "waiting for the voice", "waiting for sound", "playing", "paused", "ended"};
    return kNames[static_cast<std::size_t>(state)];
}
