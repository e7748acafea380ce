// The sentences of a text, as its reader would count them: by the rules of its
// language (ICU's, with their abbreviations) and our own for lists, quotations,
// brackets, initials, ellipses, addresses and headings. What an engine is
// handed is cut from these by the engine's own rules.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Bytes of the text, without the white space around.
struct Sentence {
    std::size_t begin;
    std::size_t end;
    bool goesOn = false;  // with the one before it, which was too long
};

// In order, lazily: reads a few kilobytes beyond the sentence that it gives,
// and a sentence that is longer than those is cut. Every byte that is no white
// space is in one of them. One thread.
class Sentences {
public:
    // UTF-8, whose bytes outlive this. language is a tag; empty: that of each paragraph, as far as
    // it shows, else that of the text's beginning, else the likely one.
    explicit Sentences(std::string_view text, std::string_view language = {},
                       std::string_view likely = "en");
    ~Sentences();
    Sentences(Sentences&&) noexcept;
    Sentences& operator=(Sentences&&) noexcept;

    bool Next(Sentence& sentence);  // false at the end

private:
    class Breaker;

    void FillWindow();
    Breaker& BreakerFor(std::string_view part);

    std::string_view text_;
    bool isGuessed_;
    std::string language_;  // that is told, or that the beginning shows
    std::size_t at_ = 0;
    bool wasCut_ = false;
    std::deque<Sentence> found_;
    std::vector<std::unique_ptr<Breaker>> breakers_;  // of the languages so far
};

std::vector<Sentence> SentencesOf(std::string_view text, std::string_view language = {});
