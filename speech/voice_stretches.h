// Which voice speaks which stretch of a text: each language its own.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "speech/language_voices.h"
#include "speech/sentences.h"
#include "speech/text_language.h"

// The text is said to be in this language from here up to the next such place.
struct LanguageMark {
    std::size_t begin;  // byte of the text
    std::string tag;    // empty where nothing is said
};

// Those for the text from the byte on, as it stands then.
std::vector<LanguageMark> MarksFrom(const std::vector<LanguageMark>& marks, std::size_t begin);

struct VoiceStretch {
    std::size_t begin;
    std::size_t end;            // where the next one begins
    int voice;                  // index into the voice table
    std::string language = {};  // of all of it, without region; empty: of several, or not looked at
};

// Whole sentences in order, lazily; every byte of the text is in one of the stretches. One thread.
//
// What the text itself shows surely counts, then what its document says of it, then the language of
// the sentence before: documents often carry the language of the program that made them. A language
// that much resembles the one before needs a longer stretch to show.
class VoiceStretches {
public:
    // UTF-8, whose bytes outlive this. voice is that for its own language and for all that has
    // none; without byLanguage it speaks all.
    VoiceStretches(std::string_view text, int voice, bool byLanguage,
                   std::vector<LanguageMark> marks);

    bool Next(VoiceStretch& stretch);  // false at the end
    // Languages for which there is no voice, in the order in which they came.
    const std::vector<std::string>& WithoutVoice() const { return withoutVoice_; }

private:
    bool Fill();
    void AddParagraph();
    void AddSentences(const std::vector<Sentence>& paragraph);
    TextLanguage WithVoice(TextLanguage seen);
    std::string Judge(const TextLanguage& seen, const std::string& marked) const;
    std::string MarkedLanguage(std::size_t place) const;
    int VoiceOf(const std::string& language);

    std::string_view text_;
    int voice_;
    std::string voiceLanguage_;
    VoicesForRun voices_;
    bool byLanguage_;
    std::vector<LanguageMark> marks_;
    Sentences sentences_;
    std::optional<Sentence> ahead_;
    std::deque<VoiceStretch> ready_;
    std::size_t enough_ = 0;  // bytes of a stretch
    std::size_t givenTo_ = 0;
    std::string language_;  // of the last sentence
    std::vector<std::string> withoutVoice_;
};
