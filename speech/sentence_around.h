// The two sources of the sentence rules share it.
#pragma once

#include <glib.h>

#include <cstddef>
#include <string_view>

#include "speech/sentence_rules.h"

// On either side of such a place; more of them are looked at as if they ended there.
constexpr int kMostMarks = 32;  // and blanks

// What stands on both sides of a place where a sentence may end.
struct SentenceRules::Around {
    std::size_t begin;          // of the word before
    std::size_t behind;         // its last stop, and closing marks
    std::string_view previous;  // the word before that
    std::string_view word;      // before, without opening marks and its last stop
    gunichar stop;              // the last one, closing marks apart
    int stops;                  // in a row
    bool isClosed;              // closing marks follow it
    std::string_view next;      // word behind, without opening marks
    std::size_t nextAt;
    gunichar nextCharacter;  // its first
    bool nextIsOpened;       // opening marks stand before it
    gunichar opening;        // the first of them, 0 for none
    bool hasBlank;           // behind the stop
    bool isBracketed;        // the stops alone
};
