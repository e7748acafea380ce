#include "speech/text_preparation.h"

#include <optional>
#include <utility>

#include "speech/plain_words.h"
#include "speech/sayable_units.h"
#include "speech/sentences.h"

struct TextUnits::Stages {
    PlainWords words;
    SayableUnits units;
    Sentences sentences;
    std::optional<Sentence> current;
    bool atEnd = false;

    // Whether the word is the first of its sentence that is said.
    bool BeginsSentence(const PlainWord& word);
};

bool TextUnits::Stages::BeginsSentence(const PlainWord& word) {
    bool begins = false;
    while (!current || word.sourceBegin >= current->end) {
        Sentence next{};
        if (!sentences.Next(next))
            break;
        current = next;
        begins = begins || !next.goesOn;
    }
    return begins;
}

TextUnits::TextUnits(std::string_view text, VoiceCharset charset, std::string_view language,
                     SaidDifferently said, SpokenForms forms, std::string_view ownLanguage) {
    const bool engineSaysEmoji = forms.IsEmojiLeftToEngine();
    Sentences sentences(text, ownLanguage, language.empty() ? "en" : language);
    stages_.reset(new Stages{PlainWords(text, charset, language, std::move(said), std::move(forms)),
                             SayableUnits(charset, engineSaysEmoji), std::move(sentences),
                             std::nullopt});
}

TextUnits::~TextUnits() = default;
TextUnits::TextUnits(TextUnits&&) noexcept = default;
TextUnits& TextUnits::operator=(TextUnits&&) noexcept = default;

bool TextUnits::Next(TextUnit& unit) {
    PlainWord word;
    while (!stages_->units.Take(unit)) {
        if (stages_->atEnd)
            return false;
        if (stages_->words.Next(word)) {
            word.beginsSentence = !word.text.empty() && stages_->BeginsSentence(word);
            stages_->units.Add(word);
        } else {
            stages_->units.Finish();
            stages_->atEnd = true;
        }
    }
    return true;
}

const UnsayableText& TextUnits::Unsayable() const {
    return stages_->words.Unsayable();
}

const std::vector<std::string>& TextUnits::GivenUpPatterns() const {
    return stages_->words.GivenUpPatterns();
}

PreparedText PrepareText(std::string_view text, VoiceCharset charset, std::string_view language,
                         SaidDifferently said, SpokenForms forms) {
    PreparedText prepared;
    TextUnits units(text, charset, language, std::move(said), std::move(forms));
    for (TextUnit unit; units.Next(unit); prepared.hasWords = true)
        prepared.text += unit.text;
    return prepared;
}
