#include "speech/sentence_characters.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr char32_t kBullets[] = {U'•', U'‣', U'⁃', U'◦', U'▪', U'●', U'■', U'○', U'–', U'—', U'·'};
constexpr std::u32string_view kStops = U".!?…。！？．｡।॥؟۔։።፧။;!?";
constexpr std::u32string_view kClosers = U"\"'”’»›)]}」』）〉》】〕“";

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

bool IsStop(gunichar character) {
    return IsOneOf(kStops, character);
}

bool IsCloser(gunichar character) {
    return IsOneOf(kClosers, character);
}

std::optional<ItemMark> MarkAt(std::string_view text) {
    ItemMark mark;
    const std::size_t open = text.starts_with('(') ? 1 : 0;
    std::size_t at = open;
    while (at < text.size() && at < open + 3 && g_ascii_isdigit(text[at]))
        mark.value = mark.value * 10 + (text[at++] - '0');
    if (at == open) {
        if (at >= text.size() || !g_ascii_isalpha(text[at]))
            return std::nullopt;
        mark.isLetter = true;
        mark.value = g_ascii_tolower(text[at++]) - 'a' + 1;
    }
    const std::size_t tail = at;
    while (at < text.size() && at < tail + 2 && (text[at] == '.' || text[at] == ')'))
        ++at;
    mark.tail = (open > 0 ? "(" : "") + std::string(text.substr(tail, at - tail));
    mark.size = at;
    if (at == tail || (at < text.size() && text[at] != ' ' && text[at] != '\n'))
        return std::nullopt;
    return mark;
}
