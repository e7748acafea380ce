// The second half of text preparation: words become the units that the engine would make, none of
// them without something to say.
#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "speech/plain_words.h"
#include "speech/text_unit.h"
#include "speech/voice_charset.h"

// The engine cuts a text into units at blank lines, after sentence punctuation, at runs of dashes
// and after 200 words, and dies on a unit without a letter or digit. So lines without one become
// blank (the pause stays), and a word of punctuation goes where the engine may cut both before and
// after it. The time for a unit grows with the square of its length: unbroken runs are cut into
// pieces and over-long units get a blank line.
class SayableUnits {
public:
    SayableUnits(VoiceCharset charset, bool engineSaysEmoji);

    void Add(const PlainWord& word);
    // After the last word.
    void Finish();
    // The next whole unit, if there is one.
    bool Take(TextUnit& unit);

private:
    bool HasWords(std::string_view text) const;
    bool IsSaid(char32_t character) const;
    int CountCharacters(std::string_view text) const;

    void EndLine();
    void AddLineEnd();
    void AddBlankLine();
    void HoldAtLineStart(const PlainWord& word, std::string_view gap);
    void AddLineStart();
    void AddSayable(const PlainWord& word);
    void AddWordless(const PlainWord& word);
    void LeaveOut();
    bool IsOverlong(std::string_view word) const;
    bool EndsBefore(std::string_view word) const;
    void EndUnitBefore(std::string_view word);
    void Append(const PlainWord& word);
    void EndUnit();
    void DropPending();
    void CloseUnit();

    VoiceCharset charset_;
    bool engineSaysEmoji_;
    std::array<bool, 256> sayable_;
    std::deque<TextUnit> ready_;

    std::string gap_;               // white space since the last word
    std::size_t gapLineStart_ = 0;  // in gap_: behind its last line end
    int gapLines_ = 0;              // line ends in gap_

    // Punctuation since the beginning of a line that has shown no other word yet.
    std::vector<PlainWord> lineStart_;
    bool lineHasWords_ = false;
    int leftOutRow_ = 0;

    bool sentenceBegins_ = false;  // with the next word that stays
    TextUnit unit_;                // the one being made
    int unitCharacters_ = 0;
    int unitWords_ = 0;
    bool unitHasWords_ = false;
    std::string lastWord_;  // of the unit
    // In unit_.text: punctuation that waits for a word, and what the unit ended at before it.
    std::size_t pendingFrom_ = std::string::npos;
    std::size_t sourceEndBeforePending_ = 0;
    int wordlessRow_ = 0;
};
