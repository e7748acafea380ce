// What Lectora adds to ICU's rules of sentences, within one paragraph.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "speech/sentence_enclosures.h"

class SentenceRules {
public:
    // The paragraph, in one line, outlives this.
    SentenceRules(std::string_view paragraph, std::string_view language);

    // Where the next sentence begins when ICU would end one there, 0 when none ends.
    // isAbbreviation: ICU's list of the language speaks against it.
    std::size_t StartBehind(std::size_t end, bool isAbbreviation) const;
    // Sentences that ICU does not see: items of a list within a line, a stop
    // without a blank behind.
    std::vector<std::size_t> OwnStarts() const;

private:
    struct Around;

    Around Look(std::size_t end) const;
    std::size_t WordBegin(std::size_t stop) const;
    void LookBehind(std::size_t end, Around& around) const;
    bool EndsAt(std::size_t end, bool isAbbreviation) const;
    bool StopEnds(const Around& around, bool isAbbreviation) const;
    bool IsDotOfAbbreviation(const Around& around) const;
    bool WordEnds(const Around& around, bool isAbbreviation) const;
    bool IsDateAhead(const Around& around) const;
    static bool IsMonthBehindDay(const Around& around);
    bool IsStreet(const Around& around) const;
    bool IsHouseNumber(const Around& around) const;
    bool LetterEnds(const Around& around) const;
    bool AbbreviationEnds(const Around& around) const;
    bool GoesOnBehindQuotation(const Around& around) const;
    bool BelongsToName(const Around& around) const;
    std::size_t LastBefore(std::size_t place) const;
    std::string_view WordBefore(std::size_t begin) const;
    void FindListItems();
    void AddSpacedQuotations(std::vector<std::size_t>& starts) const;
    void AddTightStops(std::vector<std::size_t>& starts) const;
    void AddUnseenStops(std::vector<std::size_t>& starts) const;
    bool IsUnseenStop(std::size_t blank) const;
    bool IsItemMark(std::size_t end) const;
    bool BeginsSpeech(std::size_t dash) const;
    void AddSpeeches(std::vector<std::size_t>& starts) const;
    void AddBehindSmileys(std::vector<std::size_t>& starts) const;

    std::string_view text_;
    std::string_view language_;
    SentenceEnclosures enclosures_;
    std::vector<std::size_t> items_;  // where items of a list begin within the paragraph
};
