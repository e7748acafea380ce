// The first half of text preparation: the words of a text in a voice's charset, one at a time.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "speech/pronunciations.h"
#include "speech/spoken_forms.h"
#include "speech/unsayable_text.h"
#include "speech/utf8_reader.h"
#include "speech/voice_charset.h"

// A word and the white space before it, without control bytes but tab and newline.
struct PlainWord {
    std::string gap;
    std::string text;  // at most 256 bytes; empty: white space alone
    std::size_t sourceBegin = 0;
    std::size_t sourceEnd = 0;
    bool isCutFromRun = false;  // the run of letters before it was too long, this is its next piece
    bool beginsSentence = false;  // set by who knows the text's sentences
};

// Characters become bytes of the charset: typography its plain form, signs their words, the rest
// its letters without accents; what nothing stands for goes. Reads some thousand bytes ahead of the
// word that it gives, never more, so a long stretch that goes is given as an empty line.
class PlainWords {
public:
    // The text's bytes must outlive this.
    // language: the voice's tag, English for voices that read ASCII.
    PlainWords(std::string_view text, VoiceCharset charset, std::string_view language,
               SaidDifferently said, SpokenForms forms)
        : reader_(text),
          charset_(charset),
          language_(language.substr(0, 2)),
          said_(std::move(said)),
          forms_(std::move(forms)),
          areDigitsSilent_(forms_.AreDigitsSilent()) {}

    // False at the end.
    bool Next(PlainWord& word);
    const UnsayableText& Unsayable() const { return unsayable_; }
    const std::vector<std::string>& GivenUpPatterns() const { return said_.GivenUp(); }

private:
    struct Source {
        std::size_t begin;
        std::size_t end;
    };

    void Fill();
    void Read();
    void AddCharacter(char32_t character);
    void AddInstead(const SaidDifferently::Stretch& stretch);
    bool TakeWord(PlainWord& word);
    std::size_t LengthOfPiece(std::size_t from, std::size_t end) const;

    void AddAscii(char character);
    void AddOther(char32_t character);
    void AddPlainForm(char32_t character, std::string_view plain);
    void AddUtf8(char32_t character);
    void AddMark(char32_t mark);
    bool AddSign(char32_t sign);
    bool AddForeignSign(char32_t sign);
    void AddDegreeScale();
    void AddMinus();
    void AddCurrency(const struct Currency& currency);
    bool AddAmountAhead(const struct Currency& currency, std::size_t blank);
    void AddExponent(char32_t first);
    bool StandsBehindNumber() const;
    void AddFolded(char32_t character);
    bool AddPart(char32_t part);

    bool EndsInBlank() const;
    std::string_view LastWord() const;
    bool LastWordIsNumber() const;

    void Drop(char32_t character);
    void Skip();
    std::string InCharset(std::string_view utf8) const;
    void AddWords(std::string_view words);
    void AddText(std::string_view text);
    void Put(char character);
    void Append(char character);
    void RemoveLast();

    Utf8Reader reader_;
    VoiceCharset charset_;
    std::string language_;
    SaidDifferently said_;
    SpokenForms forms_;
    bool areDigitsSilent_;
    UnsayableText unsayable_;
    std::string out_;              // what was read ahead, and a little of what was taken
    std::vector<Source> sources_;  // for each byte of out_
    std::size_t taken_ = 0;        // bytes of out_ that were given
    bool nextIsCutFromRun_ = false;

    std::size_t characterBegin_ = 0;  // of what is being read
    std::size_t keptEnd_ = 0;         // where the last thing that was not left out ended
    int blanks_ = 0;                  // at the end of out_
    bool skipsLongStretch_ = false;

    char32_t previous_ = 0;         // the last character read
    bool blankBeforeWord_ = false;  // something was said or dropped; what follows is another word
    bool dropped_ = false;
};
