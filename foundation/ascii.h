// Case rules of file names and keys: ASCII only, whatever the locale.
#pragma once

#include <string>
#include <string_view>

constexpr char ToLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string ToLower(std::string_view text) {
    std::string lowered(text);
    for (char& c : lowered)
        c = ToLower(c);
    return lowered;
}

constexpr bool EqualsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (ToLower(a[i]) != ToLower(b[i]))
            return false;
    }
    return true;
}
