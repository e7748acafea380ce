// Finding words in a text.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

struct FoundText {
    std::size_t begin;  // bytes
    std::size_t end;
};

// The first place from byte `from` on, which is a character's first; capitals and small letters are
// alike. Both texts are UTF-8. Nothing when there is none, or nothing is wanted.
std::optional<FoundText> FindText(std::string_view text, std::string_view wanted, std::size_t from);
