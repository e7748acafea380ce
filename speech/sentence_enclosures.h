// The quotations and brackets of a paragraph, as the rules of sentences see them.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

class SentenceEnclosures {
public:
    // Those that are not too long: whole sentences within longer ones are sentences of their own.
    explicit SentenceEnclosures(std::string_view paragraph);

    bool Hold(std::size_t place) const;     // within one; its closing mark still is
    bool BeginAt(std::size_t place) const;  // an opening mark
    // Where that begins which the closing mark at the place ends.
    std::optional<std::size_t> OpenOf(std::size_t closing) const;

private:
    struct Stretch {
        std::size_t begin;
        std::size_t end;  // of the closing mark, its first byte
    };

    std::vector<Stretch> all_;
};
