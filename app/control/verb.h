// What a second start asks of the Lectora that runs, by the first word behind "lectora".
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

enum class Verb : std::uint8_t {
    kReadSelection,
    kReadClipboard,
    kReadFile,
    kTogglePause,
    kStop,
    kNextSentence,
    kPreviousSentence,
    kFaster,
    kSlower,
    kStatus,
};

struct VerbFacts {
    Verb verb;
    const char* word;
    const char* operand;  // what stands behind it; empty for nothing
    const char* does;
    bool starts;  // where no Lectora runs, one is started for it
};

std::span<const VerbFacts> AllVerbs();
const VerbFacts* FindVerb(std::string_view word);  // null: it is none
