#include "speech/sentence_enclosures.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "speech/sentence_characters.h"

namespace {

constexpr std::size_t kLongEnclosed = 400;
constexpr std::size_t kMostOpen = 50;  // whoever opens more closes none
constexpr std::u32string_view kOpen = U"(（「『《〈【«“„[‹";
constexpr std::u32string_view kClose = U")）」』》〉】»””]›";
// "»Ja«", which German and Danish books have.
constexpr std::u32string_view kTurnedOpen = U"»›";
constexpr std::u32string_view kTurnedClose = U"«‹";

// Of the marks that one may open: what closes it, 0 for a mark that opens nothing there.
char32_t CloserOf(char32_t character, bool beginsWord) {
    const std::size_t turned = kTurnedOpen.find(character);
    if (beginsWord && turned != std::u32string_view::npos)
        return kTurnedClose[turned];
    const std::size_t opens = kOpen.find(character);
    return opens == std::u32string_view::npos ? 0 : kClose[opens];
}

// What a straight quotation mark does. One too many, as of 6" nails, must not turn all those behind
// it round: where the blanks around it speak for an opening one, it opens.
enum class Straight { kOpens, kCloses, kNeither };

Straight KindOf(gunichar before, gunichar next, bool isOpen) {
    const bool isBehindWord = before < kFirstIdeograph && g_unichar_isalnum(before) != 0;
    const bool isBeforeWord = next < kFirstIdeograph && g_unichar_isalnum(next) != 0;
    if (isBehindWord && isBeforeWord)  // of a Hebrew short form
        return Straight::kNeither;
    if (isOpen)
        return IsWhite(before) && next != 0 && !IsWhite(next) ? Straight::kOpens
                                                              : Straight::kCloses;
    return isBehindWord ? Straight::kNeither : Straight::kOpens;
}

}  // namespace

SentenceEnclosures::SentenceEnclosures(std::string_view paragraph) {
    struct Open {
        std::size_t place;
        char32_t mark;
        char32_t closer;
    };
    std::vector<Open> open;
    std::optional<std::size_t> straight;
    gunichar before = ' ';
    for (std::size_t at = 0; at < paragraph.size();) {
        const gunichar character = CharacterAt(paragraph, at);
        const auto closes = [character](const Open& one) {
            // German quotations end as English ones begin.
            return one.closer == character || (one.mark == U'„' && character == 0x201C);
        };
        const auto pair = std::find_if(open.rbegin(), open.rend(), closes);
        if (character == '"') {
            const Straight kind =
                KindOf(before, CharacterAt(paragraph, at + 1), straight.has_value());
            if (kind == Straight::kCloses && at - *straight < kLongEnclosed)
                all_.push_back({*straight, at});
            if (kind != Straight::kNeither)
                straight = kind == Straight::kOpens ? std::optional(at) : std::nullopt;
        } else if (pair != open.rend()) {
            if (at - pair->place < kLongEnclosed)
                all_.push_back({pair->place, at});
            open.erase(std::prev(pair.base()), open.end());
        } else if (const char32_t closer = CloserOf(character, IsWhite(before)); closer != 0) {
            if (open.size() == kMostOpen)
                open.erase(open.begin());
            open.push_back({at, character, closer});
        }
        before = character;
        at += BytesOf(character);
    }
}

bool SentenceEnclosures::Hold(std::size_t place) const {
    return std::ranges::any_of(
        all_, [place](const Stretch& one) { return one.begin < place && place <= one.end; });
}

bool SentenceEnclosures::BeginAt(std::size_t place) const {
    return std::ranges::find(all_, place, &Stretch::begin) != all_.end();
}

std::optional<std::size_t> SentenceEnclosures::OpenOf(std::size_t closing) const {
    const auto found = std::ranges::find(all_, closing, &Stretch::end);
    return found == all_.end() ? std::nullopt : std::optional(found->begin);
}
