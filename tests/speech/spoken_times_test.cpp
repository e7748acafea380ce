#include "speech/spoken_times.h"

#include <gmock/gmock.h>

#include "speech/text_preparation.h"

namespace {

using testing::ElementsAre;

constexpr int kTestRate = 1000;  // a frame a millisecond

struct Told {
    std::string text;
    std::vector<TextUnit> units;

    explicit Told(std::string source) : text(std::move(source)) {
        TextUnits prepared(text, VoiceCharset::kAscii, "en", {}, SpokenForms(text, "en", 0, {}));
        for (TextUnit unit; prepared.Next(unit);)
            units.push_back(unit);
    }
    std::optional<SpokenTimes> By(const std::string& engine, int frames) const {
        return SpokenTimesIn(engine, units, text, frames, kTestRate);
    }
    std::vector<std::string> Words(const std::string& engine, int frames) const {
        std::vector<std::string> words;
        for (const SpokenWord& word : By(engine, frames).value_or(SpokenTimes()).words)
            words.push_back(std::to_string(word.firstFrame) + " " +
                            text.substr(word.sourceBegin, word.sourceEnd - word.sourceBegin));
        return words;
    }
};

TEST(SpokenTimesTest, AMarkerIsWhatTheTextWritesInOneWord) {
    const Told told("\u201cCaf\u00e9,\u201d he said: 25 km/h -- for 1984's \u00bd! \u2026 Go.");
    std::string prepared;
    for (const TextUnit& unit : told.units)
        prepared += unit.text;
    EXPECT_EQ(prepared, "\"Cafe,\" he said: 25 kilometers per hour -- for 1984's one half! Go.");
    const std::string engine =
        "u 300 1000\nw 0.1 0.2 Cafe\nw 0.2 0.25 he\nw 0.25 0.3 said\n"
        "u 500 1000\nw 0.010000 0.1 25\nw 0.1 0.2 kilometers\nw 0.2 0.2 per\nw 0.21 0.3 hour\n"
        "w 0 0 --\nw 0.3 0.35 for\nw 0.35 0.4 1984's\nw 0.4 0.45 one\nw 0.45 0.5 half\nu 50 "
        "1000\nw 0.02 0.05 Go\n";
    EXPECT_THAT(told.Words(engine, 850),
                ElementsAre("100 Caf\u00e9", "200 he", "250 said", "310 25 km/h", "600 for",
                            "650 1984's", "700 \u00bd", "820 Go"));
    EXPECT_THAT(told.By(engine, 850)->unitFrames, ElementsAre(0, 300, 600, 800));
}

TEST(SpokenTimesTest, WhatDoesNotFitTheTextAndTheSoundIsNotBelieved) {
    const Told told("Well then. Good night.");
    const std::string first = "u 200 1000\nw 0.0 0.1 Well\nw 0.1 0.2 then\n";
    const std::string second = "u 100 1000\nw 0.02 0.05 Good\nw 0.05 0.1 night\n";
    EXPECT_EQ(told.Words(first + second, 300).size(), 4U);
    const struct {
        std::string engine;
        const char* why;
    } cases[] = {
        {"", "an engine that told nothing"},
        {first, "less than there is in the sound"},
        {first + "u 100 1000\nw 0.02 0.05 Good\n", "a word is missing"},
        {first + second + "u 0 1000\nw 0 0 again\n", "a word too many"},
        {first + "u 101 1000\nw 0.02 0.05 Good\nw 0.05 0.1 night\n", "more frames"},
        {first + "u 100 8000\nw 0.02 0.05 Good\nw 0.05 0.1 night\n", "another rate"},
        {first + "u 100 1000\nw 0.02 0.05 Bad\nw 0.05 0.1 night\n", "another word"},
        {first + "u 100 1000\nw 0.05 0.1 Good\nw 0.02 0.05 night\n", "backwards"},
        {first + "u 100 1000\nw 0.02 0.05 Good\nw 0.05 0.2 night\n", "beyond its sound"},
        {first + "u 100 1000\nw -0.02 0.05 Good\nw 0.05 0.1 night\n", "before its sound"},
        {first + "u 100 1000\nw nan nan Good\nw 0.05 0.1 night\n", "no number"},
        {first + "u 100 1000\nw 0.02 0.05 Good\nw 0.05 0.1 night", "cut off"},
        {first + "u -100 1000\nu 200 1000\nw 0.02 0.05 Good\nw 0.05 0.1 night\n", "no length"},
        {"w 0 0.1 Well\n" + first + second, "a word without sound"},
        {first + "hello\n" + second, "chatter"},
    };
    for (const auto& test : cases)
        EXPECT_FALSE(told.By(test.engine, 300)) << test.why;
}

}  // namespace
