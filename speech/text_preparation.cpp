#include "speech/text_preparation.h"

#include "speech/plain_words.h"
#include "speech/sayable_units.h"

struct TextUnits::Stages {
    PlainWords words;
    SayableUnits units;
    bool atEnd = false;
};

TextUnits::TextUnits(std::string_view text, VoiceCharset charset)
    : stages_(new Stages{PlainWords(text, charset), SayableUnits(charset)}) {}

TextUnits::~TextUnits() = default;
TextUnits::TextUnits(TextUnits&&) noexcept = default;
TextUnits& TextUnits::operator=(TextUnits&&) noexcept = default;

bool TextUnits::Next(TextUnit& unit) {
    PlainWord word;
    while (!stages_->units.Take(unit)) {
        if (stages_->atEnd)
            return false;
        if (stages_->words.Next(word)) {
            stages_->units.Add(word);
        } else {
            stages_->units.Finish();
            stages_->atEnd = true;
        }
    }
    return true;
}

PreparedText PrepareText(std::string_view text, VoiceCharset charset) {
    PreparedText prepared;
    TextUnits units(text, charset);
    for (TextUnit unit; units.Next(unit); prepared.hasWords = true)
        prepared.text += unit.text;
    return prepared;
}
