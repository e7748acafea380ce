// What is said differently from how it is written: the lists (pronunciation_file.h), made ready for
// texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "speech/pronunciation_file.h"
#include "speech/pronunciation_pattern.h"
#include "speech/sentences.h"

// Does not change once made; any thread.
//
// A text of the list counts as whole words: "St" is not found in "Stone", but in "St." and "St's".
// Blanks and line ends count as one blank, the two apostrophes as one. Patterns are searched within
// each sentence and go before words. The longest text that begins at a word wins; of the same text
// the entry for the voice goes before that for its language and that for all, and the earlier entry
// before the later one.
class Pronunciations {
public:
    explicit Pronunciations(std::vector<Pronunciation> entries);

    bool IsEmpty() const { return nodes_.size() == 1 && patterns_.empty(); }
    const std::vector<Pronunciation>& Entries() const { return entries_; }

private:
    friend class SaidDifferently;

    struct Node {
        std::unordered_map<std::string, std::uint32_t> next;  // by the folded word
        std::vector<std::uint32_t> entries;                   // that end here
    };
    struct Pattern {
        std::uint32_t entry;
        PronunciationPattern pattern;
    };

    void AddWords(std::uint32_t entry);

    std::vector<Pronunciation> entries_;
    std::vector<Node> nodes_{1};
    std::vector<Pattern> patterns_;
};

// Of the user and of the machine; read again when a file has changed. Any thread.
std::shared_ptr<const Pronunciations> CurrentPronunciations();

// The text with the entry applied, whatever voice and language it is for.
std::string SayWith(Pronunciation entry, std::string_view text);

// More patterns than these would make each sentence wait; the others are left out, with a word in
// the log.
constexpr std::size_t kMostPatterns = 300;

// A text's stretches that a voice says differently. Asked from the text's beginning to its end; one
// thread.
class SaidDifferently {
public:
    SaidDifferently() = default;  // nothing
    // The text (UTF-8) outlives this; voice is its key, language its tag.
    SaidDifferently(std::shared_ptr<const Pronunciations> list, std::string_view text,
                    std::string voice, std::string language);

    void SayHosts() { saysHosts_ = true; }  // of web addresses, which the list goes before

    struct Stretch {
        std::size_t end;
        std::string_view said;  // empty: it is skipped. Until the next question.
    };
    // Of one that begins here.
    std::optional<Stretch> At(std::size_t at);

    // Patterns that took too long for a sentence and were not used from there on.
    const std::vector<std::string>& GivenUp() const { return givenUp_; }

private:
    bool Holds(const Pronunciation& entry) const;
    int RankOf(const Pronunciation& entry) const;
    std::optional<Stretch> ListedAt(std::size_t at);
    std::optional<Stretch> WordsAt(std::size_t at, std::string_view firstWord);
    const Pronunciation* BestOf(const std::vector<std::uint32_t>& entries,
                                std::string_view written) const;
    std::optional<Stretch> PatternAt(std::size_t at);
    void SearchNextSentence();

    std::shared_ptr<const Pronunciations> list_;
    std::string_view text_;
    std::string voice_;
    std::string language_;
    bool saysHosts_ = false;
    std::size_t wordEnd_ = 0;  // of the word that was asked for last
    struct ActivePattern {
        const Pronunciations::Pattern* pattern;
        bool isGivenUp = false;
    };
    std::vector<ActivePattern> patterns_;  // that hold for the voice
    std::optional<Sentences> sentences_;   // when there are such
    std::size_t searchedTo_ = 0;
    std::vector<PronunciationPattern::Match> matches_;  // of one sentence, as places of the text
    std::size_t nextMatch_ = 0;
    std::vector<std::string> givenUp_;
};
