// What a text without a name is called by.
#pragma once

#include <string>
#include <string_view>

struct FirstWords {
    std::string words;  // on one line
    bool isAll = false;
};

// The text's first words (UTF-8), at most so many and of so many characters; only a first word that
// is longer is cut.
FirstWords FirstWordsOf(std::string_view text, int mostWords = 6, int mostCharacters = 50);
// The same, with "..." where the text goes on.
std::string BeginningOf(std::string_view text, int mostWords = 6, int mostCharacters = 50);
