// A language's abbreviations as ICU lists them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class Abbreviations {
public:
    explicit Abbreviations(const std::string& language);

    // Whether one of them, as a word of its own, ends in front of the byte, white space apart.
    // ICU's filter of sentence breaks finds them within words too: "r." in "leer.".
    bool EndAt(std::string_view text, std::size_t end) const;

private:
    std::vector<std::string> sorted_;
    std::size_t longest_ = 0;
};
