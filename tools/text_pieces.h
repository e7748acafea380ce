// Cutting a long text into pieces that the speech engine can speak within its time limit.
#pragma once

#include <cstddef>
#include <string_view>

// Length in bytes of a first piece of at most limit bytes (4 or more): the whole text when it is no
// longer, else up to the last end of a paragraph in the second half of what fits, of a sentence, of
// a word, of a character.
std::size_t PieceLength(std::string_view text, std::size_t limit);

// How long the next piece should be, learnt from how long the last one took.
class PieceSizer {
public:
    std::size_t Limit() const { return limit_; }
    void Took(double seconds);
    // The last piece was not spoken in time. False: it was as short as pieces get.
    bool Shorten();

private:
    static constexpr std::size_t kSmallest = 300;
    static constexpr std::size_t kFirst = 2000;  // the slowest voices take about 8 s
    static constexpr std::size_t kLargest = 20000;
    static constexpr double kQuickSeconds = 2;
    static constexpr double kSlowSeconds = 8;

    std::size_t limit_ = kFirst;
};
