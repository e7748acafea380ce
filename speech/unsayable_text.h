// What a voice cannot say of a text and is left out, by kind and amount.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

class UnsayableText {
public:
    // A character at these bytes of the text; letters that follow one another are a word.
    void Add(char32_t character, std::size_t begin, std::size_t end);
    // A mark goes with the letter before it, also with one that was left out.
    void AddMark(std::size_t begin, std::size_t end) {
        lastEnd_ = begin == lastEnd_ ? end : lastEnd_;
    }
    void Add(const UnsayableText& other);
    // One sentence for the user: "12 words in Cyrillic and 3 signs were left out, ..."; empty when
    // nothing was.
    std::string Message() const;

private:
    struct Kind {
        std::string name;  // "Cyrillic", "numbers"; empty: signs
        std::size_t amount;
    };

    std::vector<Kind> kinds_;  // in the order in which they came
    std::size_t lastEnd_ = std::string::npos;
    std::string lastName_;
};
