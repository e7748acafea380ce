// At which frames of a piece's sound its words and units begin, where the engine tells.
//
// An engine that can leaves a file of lines beside its sound: "u FRAMES RATE" for each stretch of
// sound, and behind it "w BEGIN END NAME" for each word of the prepared text in order, in seconds
// of that stretch, both 0 for one that is not heard; NAME holds the word's letters without the
// marks around it.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "speech/text_unit.h"

// What the text writes in one is one word, however many the engine says for it.
struct SpokenWord {
    int firstFrame;
    std::size_t sourceBegin;  // bytes of the user's text
    std::size_t sourceEnd;
};

struct SpokenTimes {
    std::vector<SpokenWord> words;  // in order
    std::vector<int> unitFrames;    // where each unit begins; empty: nothing is known

    // The sound, of `from` frames, has now `to`.
    void Stretch(int from, int to);
};

// More than an engine tells of a prepared text of so many bytes.
constexpr std::size_t MostToldOf(std::size_t textSize) {
    return 64 * (textSize + 16);
}

// Judges what the engine told by what it was given and by its sound: nothing, unless all of it
// fits. The units' sources are bytes of the text.
std::optional<SpokenTimes> SpokenTimesIn(std::string_view told, std::span<const TextUnit> units,
                                         std::string_view text, int frames, int rate);
