#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The lines of a paragraph: which of them begin a sentence of their own, and
// which only wrap.
class ParagraphLines {
public:
    explicit ParagraphLines(std::string_view paragraph);

    // The paragraph with blanks in place of line ends, byte for byte as long.
    const std::string& Joined() const { return joined_; }
    // Bytes at which a line begins a sentence: list items, and what follows a
    // heading.
    const std::vector<std::size_t>& Starts() const { return starts_; }

private:
    std::string joined_;
    std::vector<std::size_t> starts_;
};
