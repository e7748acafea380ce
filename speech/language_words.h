// The small words that show a language, and what shows one of languages that are much alike.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// How many words of a text are its; one that several languages have is shared among them.
struct ShownByWords {
    std::string_view language;
    double sum;
};

// Valid UTF-8, letter by letter, whatever the user's locale makes of an "I".
std::string InSmallLetters(std::string_view text);
// Of the languages that are known here, those that show, the one that shows most first; the text is
// in small letters.
std::vector<ShownByWords> LanguagesShownByWords(std::string_view small);
bool IsKnownByWords(std::string_view language);
// Whether the text shows it more than any other, and by more than a chance word.
bool IsShownByWords(std::string_view text, std::string_view language);
