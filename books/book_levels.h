// By how much each voice of a book is turned up or down, so that all are equally loud and none
// changes from one section to the next.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "sound/sound_source.h"

// A stretch of sound up to the next one, in frames.
struct VoiceTurn {
    int first = 0;
    std::string voice;  // its key
};
struct LevelStretch {
    int first = 0;
    int change = 0;  // hundredths of a decibel
};

// A voice is measured in the sections in which it speaks first, until that is a minute: from then
// on it keeps its level, as it keeps its own between loud and quiet sentences.
class BookLevels {
public:
    // The source's rest is a section; the stretches begin where it does.
    void Measure(const LSoundSource& section, const std::vector<VoiceTurn>& stretches);
    std::vector<LevelStretch> LevelsOf(const std::vector<VoiceTurn>& stretches) const;

    // As they are kept between runs: a line a voice.
    std::string Stored() const;
    void Load(std::string_view lines);

private:
    struct Measured {
        double seconds = 0;
        double power = 0;  // the mean
    };
    int ChangeOf(const std::string& voice) const;

    std::map<std::string, Measured> voices_;
};
