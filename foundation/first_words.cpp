#include "foundation/first_words.h"

#include <glib.h>

FirstWords FirstWordsOf(std::string_view text, int mostWords, int mostCharacters) {
    FirstWords first;
    const char* at = text.data();
    const char* const end = text.data() + text.size();
    glong characters = 0;
    for (int word = 0;; ++word) {
        while (at < end && g_unichar_isspace(g_utf8_get_char(at)) != FALSE)
            at = g_utf8_next_char(at);
        if (at >= end) {
            first.isAll = true;
            return first;
        }
        const char* const begin = at;
        glong length = 0;
        for (; at < end && g_unichar_isspace(g_utf8_get_char(at)) == FALSE; ++length) {
            if (word == 0 && length == mostCharacters) {
                first.words.assign(begin, at);
                return first;
            }
            at = g_utf8_next_char(at);
        }
        if (word == mostWords || (word > 0 && characters + length > mostCharacters))
            return first;
        first.words.append(word > 0 ? " " : "").append(begin, at);
        characters += length + 1;
    }
}

std::string BeginningOf(std::string_view text, int mostWords, int mostCharacters) {
    const FirstWords first = FirstWordsOf(text, mostWords, mostCharacters);
    return first.isAll ? first.words : first.words + "...";
}
