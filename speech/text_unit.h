// The least that an engine is handed.
#pragma once

#include <cstddef>
#include <string>

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
    bool beginsSentence = false;  // of the text (sentences.h); others go on with one
};
