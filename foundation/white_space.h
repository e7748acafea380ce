// What stands between words and lines and says nothing.
#pragma once

#include <algorithm>
#include <string_view>

constexpr std::string_view kWhiteSpace = " \t\r\n\f\v";

// What a text holds beside the white space around it; empty: somewhere in it.
constexpr std::string_view Trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
    return text.substr(0, text.find_last_not_of(kWhiteSpace) + 1);
}
