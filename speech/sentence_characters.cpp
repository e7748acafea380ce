#include "speech/sentence_characters.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr char32_t kBullets[] = {U'•', U'‣', U'⁃', U'◦', U'▪', U'●', U'■', U'○', U'–', U'—', U'·'};
constexpr std::u32string_view kStops = U".!?…。！？．｡।॥؟۔։።፧။;!?";
constexpr std::u32string_view kClosers = U"\"'”’»›«‹)]}」』）〉》】〕“";

// From 1 on; 0 for a letter with which no list's items are counted.
int PlaceInAlphabet(gunichar small) {
    for (const auto& [first, last] :
         {std::pair{U'a', U'z'}, std::pair{U'а', U'я'}, std::pair{U'α', U'ω'}})
        if (small >= first && small <= last)
            return static_cast<int>(small - first) + 1;
    return 0;
}

bool IsOneOf(std::u32string_view set, gunichar character) {
    return set.find(static_cast<char32_t>(character)) != std::u32string_view::npos;
}

}  // namespace

gunichar CharacterAt(std::string_view text, std::size_t at) {
    if (at >= text.size())
        return 0;
    const gunichar character =
        g_utf8_get_char_validated(text.data() + at, static_cast<gssize>(text.size() - at));
    return character < 0x110000 ? character : 0xFFFD;
}

std::size_t BytesOf(gunichar character) {
    return character == 0xFFFD ? 1
                               : static_cast<std::size_t>(g_unichar_to_utf8(character, nullptr));
}

std::size_t Before(std::string_view text, std::size_t at) {
    do
        --at;
    while (at > 0 && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U);
    return at;
}

bool IsBullet(gunichar character) {
    return std::ranges::find(kBullets, character) != std::end(kBullets);
}

bool IsDash(gunichar character) {
    return character == 0x2013 || character == 0x2014;
}

bool IsStop(gunichar character) {
    return IsOneOf(kStops, character);
}

bool IsCloser(gunichar character) {
    return IsOneOf(kClosers, character);
}

glong CharactersIn(std::string_view word) {
    return g_utf8_strlen(word.data(), static_cast<gssize>(word.size()));
}

bool EndsInNumber(std::string_view word) {
    return !word.empty() && g_ascii_isdigit(word.back());
}

std::optional<ItemMark> MarkAt(std::string_view text) {
    ItemMark mark;
    const std::size_t open = text.starts_with('(') ? 1 : 0;
    std::size_t at = open;
    for (int digits = 0; digits < 3 && g_unichar_isdigit(CharacterAt(text, at)) != 0; ++digits) {
        mark.value = mark.value * 10 + g_unichar_digit_value(CharacterAt(text, at));
        at += BytesOf(CharacterAt(text, at));
    }
    if (at == open) {
        const gunichar letter = CharacterAt(text, at);
        mark.value = PlaceInAlphabet(g_unichar_tolower(letter));
        if (mark.value == 0)
            return std::nullopt;
        mark.isLetter = true;
        mark.isCapital = g_unichar_isupper(letter) != 0;
        at += BytesOf(letter);
    }
    const std::size_t tail = at;
    constexpr std::string_view kBurmeseStop = "။";
    while (at < text.size() && at < tail + 2 && (text[at] == '.' || text[at] == ')'))
        ++at;
    if (!mark.isLetter && text.substr(at).starts_with(kBurmeseStop))
        at += kBurmeseStop.size();
    mark.tail = (open > 0 ? "(" : "") + std::string(text.substr(tail, at - tail));
    mark.size = at;
    const gunichar next = CharacterAt(text, at);
    const bool isParted = next == 0 || IsWhite(next);
    if (at == tail || !isParted)
        return std::nullopt;
    return mark;
}
