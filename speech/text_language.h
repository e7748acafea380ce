// The language of a stretch of text, as far as it shows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct TextLanguage {
    std::string tag;      // "de"; empty: it does not show surely enough
    bool isLong = false;  // long enough to tell languages apart that are much alike
    bool isSure = false;  // nothing in the text speaks for another one
    std::vector<std::string> orElse = {};  // much alike, and shown nearly as much
};

// UTF-8. Any thread.
TextLanguage LanguageOf(std::string_view text);

// "de" of "de-AT" and "de_AT.UTF-8"; languages that go by several codes by one of them.
std::string_view LanguageOnly(std::string_view tag);

// Whether sentences of the two are taken for each other too easily (Danish and Norwegian).
bool AreMuchAlike(std::string_view one, std::string_view other);

// Languages whose voices read a text of this one, too, where it has none (Bosnian for Croatian).
std::vector<std::string_view> SpokenAlike(std::string_view language);
