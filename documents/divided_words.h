// Words that are divided at the ends of lines.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

// Knows how words are written within the lines of a document. One thread.
class DividedWords {
public:
    void Learn(std::string_view line);
    // True when the line begins with the rest of the word, or of the address, that the text ends
    // with; it has been added, then, with or without the hyphen.
    bool Join(std::string& text, std::string_view line) const;

private:
    bool KeepsHyphen(std::string_view before, const std::string& first,
                     const std::string& second) const;
    bool Holds(const std::string& word) const { return words_.contains(word); }

    std::set<std::string, std::less<>> words_;
};
