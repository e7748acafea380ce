// Cutting a text in UTF-8 between its characters.
#pragma once

#include <cstddef>
#include <string_view>

// The first bytes of the text, at most so many, that do not end inside a character. Of bytes that
// are no UTF-8, and belong to no beginning, as many as are asked for.
inline std::string_view WholeCharacters(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes)
        return text;
    std::size_t end = bytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end;
    constexpr std::size_t kLongestCharacter = 4;
    return text.substr(0, bytes - end < kLongestCharacter ? end : bytes);
}
