// The characters of a text, whatever its bytes.
#pragma once

#include <cstddef>
#include <string_view>

// Walks UTF-8, skipping bytes that are none.
class Utf8Reader {
public:
    explicit Utf8Reader(std::string_view text) : text_(text) {}

    bool AtEnd() const { return at_ >= text_.size(); }
    std::size_t At() const { return at_; }
    std::string_view Rest() const { return text_.substr(at_); }
    void Skip(std::size_t bytes) { at_ += bytes; }

    // The next character; 0 for a byte that does not belong to one.
    char32_t Next();
    char32_t Peek() const;

private:
    std::string_view text_;
    std::size_t at_ = 0;
};
