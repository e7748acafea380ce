#include "tools/text_pieces.h"

#include <algorithm>

namespace {

bool IsBlank(char character) {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n' ||
           character == '\f';
}

// Whether a piece may end before `at`: a sentence's closing mark, closing quotes, then a blank.
bool EndsSentence(std::string_view text, std::size_t at) {
    if (!IsBlank(text[at]))
        return false;
    std::size_t mark = at;
    while (mark > 0 && std::string_view("\"')]").find(text[mark - 1]) != std::string_view::npos)
        mark--;
    return mark > 0 && std::string_view(".!?:;").find(text[mark - 1]) != std::string_view::npos;
}

bool EndsParagraph(std::string_view text, std::size_t at) {
    if (text[at] != '\n')
        return false;
    std::size_t before = at;
    while (before > 0 && text[before - 1] != '\n' && IsBlank(text[before - 1]))
        before--;
    return before > 0 && text[before - 1] == '\n';
}

bool EndsWord(std::string_view text, std::size_t at) {
    return IsBlank(text[at]);
}

// UTF-8: not in front of a continuation byte.
bool EndsCharacter(std::string_view text, std::size_t at) {
    return (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
}

}  // namespace

std::size_t PieceLength(std::string_view text, std::size_t limit) {
    if (text.size() <= limit)
        return text.size();
    for (const auto ends : {EndsParagraph, EndsSentence, EndsWord}) {
        for (std::size_t at = limit; at > limit / 2; at--) {
            if (ends(text, at))
                return at;
        }
    }
    for (std::size_t at = limit; at > limit - 4; at--) {
        if (EndsCharacter(text, at))
            return at;
    }
    return limit;  // not UTF-8
}

void PieceSizer::Took(double seconds) {
    if (seconds < kQuickSeconds)
        limit_ = std::min(limit_ * 2, kLargest);
    else if (seconds > kSlowSeconds)
        limit_ = std::max(limit_ / 2, kSmallest);
}

bool PieceSizer::Shorten() {
    if (limit_ == kSmallest)
        return false;
    limit_ = std::max(limit_ / 4, kSmallest);
    return true;
}
