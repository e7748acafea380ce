// What the pictures in a text are called in several languages: CLDR's short names.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

struct EmojiName {
    std::size_t size;  // bytes of the text, with what only changes the look
    std::string name;
};

// The longest picture that the text begins with, a flag or a family as one. Nothing where there is
// none, or none of that language ("de") is known: the files stand in the program's folder "share",
// and are read when the first picture is met. Any thread.
std::optional<EmojiName> FindEmojiName(std::string_view language, std::string_view text);
