// Makes any text fit for the speech engine, which reads bytes, spells out what it does not know,
// and dies on a unit with nothing to say.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "speech/pronunciations.h"
#include "speech/spoken_forms.h"
#include "speech/text_unit.h"
#include "speech/unsayable_text.h"
#include "speech/voice_charset.h"

// The units of a text in order. Reads only as far ahead as the unit's end needs, so the first
// sentence of a book costs what it costs alone; what cannot be said is passed over in linear time
// and constant memory. Any thread, one at a time.
//
// The text is UTF-8, invalid bytes are dropped. Plain ASCII with something to say in each line
// comes out unchanged, except where the engine would make a unit of punctuation alone and die on
// it: such a word ("--" or "..." behind a sentence's end or at the beginning) goes, as the pause is
// there already. What holds no sentence end is cut at 300 to 500 characters by an empty line,
// because the engine's time for a unit grows with the square of its length.
class TextUnits {
public:
    // The text's bytes must outlive this.
    // language is the voice's, for signs that are said in words; said and then forms are asked
    // about this text. Its sentences are those of its own language, which is looked for where it is
    // not told.
    TextUnits(std::string_view text, VoiceCharset charset, std::string_view language = {},
              SaidDifferently said = {}, SpokenForms forms = {}, std::string_view ownLanguage = {});
    ~TextUnits();
    TextUnits(TextUnits&&) noexcept;
    TextUnits& operator=(TextUnits&&) noexcept;

    // False at the end.
    bool Next(TextUnit& unit);
    // Of what was read so far.
    const UnsayableText& Unsayable() const;
    const std::vector<std::string>& GivenUpPatterns() const;

private:
    struct Stages;
    std::unique_ptr<Stages> stages_;
};

struct PreparedText {
    std::string text;       // all units together
    bool hasWords = false;  // false: nothing in it can be said, do not start the engine
};

PreparedText PrepareText(std::string_view text, VoiceCharset charset,
                         std::string_view language = {}, SaidDifferently said = {},
                         SpokenForms forms = {});
