// Makes any text fit for the speech engine, which reads bytes, spells out what it does not know,
// and dies on a unit with nothing to say.
#pragma once

#include <string>
#include <string_view>

// What the bytes of a prepared text mean. English voices read ASCII.
enum class VoiceCharset { Ascii, Latin1, Latin2, Latin9, Utf8 };

struct PreparedText {
    std::string text;  // in the voice's charset, without NUL and control bytes but tab and newline
    bool hasWords = false;  // false: nothing in it can be said, do not start the engine
};

// Pure function of its arguments, linear in the text's length; text is UTF-8, invalid bytes are
// dropped. Plain ASCII with something to say in each line comes back unchanged, except where the
// engine would make a unit of punctuation alone and die on it: such a word ("--" or "..." behind a
// sentence's end or at the beginning) goes, as the pause is there already.
PreparedText PrepareText(std::string_view text, VoiceCharset charset);
