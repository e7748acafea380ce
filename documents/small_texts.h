// Small things that the readers of several kinds of documents do with names and numbers.
#pragma once

#include <glib.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

#include "foundation/white_space.h"

constexpr std::size_t kReadAtOnce = 65536;  // bytes, between two questions whether to go on
constexpr std::size_t kLongestFact = 1000;  // bytes of a title or a name
constexpr std::size_t kMostBehind = 1000;   // notes and text boxes of one paragraph
constexpr std::size_t kMostListLevels = 10;

template <std::size_t N>
using SortedNames = std::array<std::string_view, N>;

template <std::size_t N>
bool IsOneOf(std::string_view name, const SortedNames<N>& sorted) {
    return std::binary_search(sorted.begin(), sorted.end(), name);
}

// The whole number that the text begins with.
inline int NumberIn(std::string_view text, int otherwise = 0) {
    const std::string beginning(text.substr(0, 8));
    char* end = nullptr;
    const long number = std::strtol(beginning.c_str(), &end, 10);
    return end == beginning.c_str() ? otherwise : static_cast<int>(number);
}

inline bool AreDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

inline bool BeginsLower(std::string_view text) {
    return !text.empty() && g_unichar_islower(g_utf8_get_char(text.data())) != FALSE;
}

// Of a line of contents: the row of dots between a title and the number of its page.
inline bool HoldsLeader(std::string_view text) {
    return text.find(". . .") != std::string_view::npos ||
           text.find("....") != std::string_view::npos;
}

// "h1" to "h6".
inline bool IsHeadingName(std::string_view name) {
    return name.size() == 2 && name[0] == 'h' && name[1] >= '1' && name[1] <= '6';
}
