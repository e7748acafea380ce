// What shows one of languages that are much alike: their spellings and endings.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

// How often a text, in small letters with a blank at both ends, holds what tells each language.
class TellersIn {
public:
    explicit TellersIn(std::string_view text);
    std::size_t Of(std::string_view language) const;

private:
    std::vector<std::size_t> counts_;
};
// Whether anything is known here that does.
bool HasTellers(std::string_view language);
// Whether the text holds none of the letters that some ten words of the language never lack.
bool LacksItsLetters(std::string_view text, std::string_view language);
