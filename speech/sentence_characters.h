// Characters as the rules of sentences see them.
#pragma once

#include <glib.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// The one at that byte, U+FFFD for bytes that are none; 0 at the end.
gunichar CharacterAt(std::string_view text, std::size_t at);
std::size_t BytesOf(gunichar character);
// Where the character before the place begins; the place is not 0.
std::size_t Before(std::string_view text, std::size_t at);

// Chinese, Japanese and Korean characters stand from here on.
constexpr gunichar kFirstIdeograph = 0x2E80;

inline bool IsWhite(gunichar character) {
    return g_unichar_isspace(character) != 0;
}
bool IsBullet(gunichar character);
bool IsDash(gunichar character);    // long ones, of dialogues and lists
bool IsStop(gunichar character);    // ends sentences, in any script
bool IsCloser(gunichar character);  // closes brackets or quotations

glong CharactersIn(std::string_view word);
bool EndsInNumber(std::string_view word);

// A list item's mark at the beginning of a text: "1.", "1)", "1.)", "a.", "(a)", "၁။".
struct ItemMark {
    int value = 0;  // of a number, or of a letter
    bool isLetter = false;
    bool isCapital = false;
    std::string tail;
    std::size_t size = 0;
};
std::optional<ItemMark> MarkAt(std::string_view text);
