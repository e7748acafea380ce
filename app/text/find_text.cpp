#include "app/text/find_text.h"

#include <glib.h>

#include <vector>

namespace {

// Moves on to the next character.
gunichar NextSmallLetter(const char*& at) {
    const gunichar letter = static_cast<unsigned char>(*at) < 0x80
                                ? static_cast<gunichar>(g_ascii_tolower(*at))
                                : g_unichar_tolower(g_utf8_get_char(at));
    at = g_utf8_next_char(at);
    return letter;
}

std::vector<gunichar> SmallLetters(std::string_view text) {
    std::vector<gunichar> letters;
    for (const char* at = text.data(); at < text.data() + text.size();)
        letters.push_back(NextSmallLetter(at));
    return letters;
}

}  // namespace

std::optional<FoundText> FindText(std::string_view text, std::string_view wanted,
                                  std::size_t from) {
    const std::vector<gunichar> letters = SmallLetters(wanted);
    if (letters.empty())
        return std::nullopt;
    const char* const end = text.data() + text.size();
    for (const char* begin = text.data() + from; begin < end; begin = g_utf8_next_char(begin)) {
        const char* at = begin;
        std::size_t same = 0;
        while (same < letters.size() && at < end && NextSmallLetter(at) == letters[same])
            ++same;
        if (same == letters.size())
            return FoundText{static_cast<std::size_t>(begin - text.data()),
                             static_cast<std::size_t>(at - text.data())};
    }
    return std::nullopt;
}
