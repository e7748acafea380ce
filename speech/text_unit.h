// The least that an engine is handed.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// A word of a unit's text, with the marks around it.
struct UnitWord {
    std::size_t at;  // in the unit's text
    std::size_t size;
    std::size_t sourceBegin;  // counted from where the unit's begins
    std::size_t sourceEnd;
};

// What the engine itself ends as an utterance; a sentence of the text holds one or several, none
// holds two sentences. So units can be spoken in runs of one or several, and the runs' sound joined
// is what one run gives for all.
struct TextUnit {
    // In the voice's charset, without NUL and control bytes but tab and newline; with the white
    // space behind it, and that at the very beginning of the text. Always holds something to say.
    std::string text;
    // The bytes of the user's text from its first word to its last. Never before those of the unit
    // before it.
    std::size_t sourceBegin = 0;
    std::size_t sourceEnd = 0;
    std::vector<UnitWord> words = {};  // in order
    bool beginsSentence = false;       // of the text (sentences.h); others go on with one
};
