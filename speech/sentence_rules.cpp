#include "speech/sentence_rules.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "speech/sentence_characters.h"
#include "speech/sentence_words.h"

namespace {

// Whole sentences within longer quotations and brackets are sentences of their
// own.
constexpr std::size_t kLongEnclosed = 400;
constexpr std::size_t kLongestMark = 8;
constexpr gunichar kFirstIdeograph = 0x2E80;

}  // namespace

// What stands on both sides of a place where a sentence may end.
struct SentenceRules::Around {
    std::size_t begin;       // of the word before
    std::string_view word;   // before, without opening marks and its last stop
    gunichar stop;           // the last one, closing marks apart
    int stops;               // in a row
    bool isClosed;           // closing marks follow it
    std::string_view next;   // word behind, without opening marks
    gunichar nextCharacter;  // its first
    bool nextIsOpened;       // opening marks stand before it
    bool hasBlank;           // behind the stop
    bool isBracketed;        // the stops alone
};

SentenceRules::SentenceRules(std::string_view paragraph, std::string_view language)
    : text_(paragraph), language_(language) {
    FindEnclosed();
    FindListItems();
}

SentenceRules::Around SentenceRules::Look(std::size_t end) const {
    Around around{};
    std::size_t at = end;
    while (at > 0 && IsWhite(CharacterAt(text_, Before(text_, at))))
        at = Before(text_, at);
    around.hasBlank = at < end;
    while (at > 0 && IsCloser(CharacterAt(text_, Before(text_, at)))) {
        at = Before(text_, at);
        around.isClosed = true;
    }
    std::size_t stop = at;
    while (stop > 0 && IsStop(CharacterAt(text_, Before(text_, stop)))) {
        if (around.stops++ == 0)
            around.stop = CharacterAt(text_, Before(text_, stop));
        stop = Before(text_, stop);
    }
    around.isBracketed =
        around.isClosed && stop > 0 && (text_[stop - 1] == '[' || text_[stop - 1] == '(');
    std::size_t begin = stop;
    while (begin > 0 && !IsWhite(CharacterAt(text_, Before(text_, begin))))
        begin = Before(text_, begin);
    const std::string_view opening = "\"'([{";
    while (begin < stop && (opening.find(text_[begin]) != std::string_view::npos))
        ++begin;
    while (begin < stop && g_unichar_ispunct(CharacterAt(text_, begin)) != 0 &&
           CharacterAt(text_, begin) > 0x7F)
        begin += BytesOf(CharacterAt(text_, begin));
    // "l'Ing."
    if (const std::size_t elided = text_.substr(0, stop).rfind('\'');
        elided != std::string_view::npos && elided >= begin && elided + 2 < stop)
        begin = elided + 1;
    around.begin = begin;
    around.word = text_.substr(begin, stop - begin);
    std::size_t next = end;
    while (next < text_.size()) {
        const gunichar character = CharacterAt(text_, next);
        const bool opens =
            g_unichar_ispunct(character) != 0 && character != '-' && character != '.';
        if (!opens && !IsWhite(character))
            break;
        around.nextIsOpened = around.nextIsOpened || opens;
        next += BytesOf(character);
    }
    next = std::min(next, text_.size());
    around.nextCharacter = CharacterAt(text_, next);
    around.next =
        text_.substr(next, std::min(text_.find_first_of(" ,;:.!?\"')", next), text_.size()) - next);
    return around;
}

// ICU takes every quotation mark for a closing one.
std::size_t SentenceRules::StartBehind(std::size_t end, bool isAbbreviation) const {
    if (end >= text_.size())
        return 0;
    std::size_t start = end;
    for (const Stretch& one : enclosed_)
        if (one.begin < end && Before(text_, end) == one.begin)
            start = one.begin;
    return EndsAt(start, isAbbreviation) ? start : 0;
}

bool SentenceRules::EndsAt(std::size_t end, bool isAbbreviation) const {
    const Around around = Look(end);
    if (around.nextCharacter == 0 || IsEnclosed(end) || IsItemMark(end))
        return false;
    // "[...]", and a quotation behind which its sentence goes on without a blank.
    if (around.isBracketed ||
        (around.isClosed && !around.hasBlank && around.nextCharacter > kFirstIdeograph))
        return false;
    if (around.stop == '.' || around.stop == 0x2026)
        return StopEnds(around, isAbbreviation);
    // "Stop!" he said. Yahoo! in the ...
    if ((around.stop == '!' || around.stop == '?') &&
        g_unichar_islower(around.nextCharacter) != 0 && !around.nextIsOpened)
        return false;
    return true;
}

bool SentenceRules::StopEnds(const Around& around, bool isAbbreviation) const {
    const std::string_view word = around.word;
    // An ellipsis of three stops, close or apart, goes on; a fourth one ends.
    if (around.stops == 1 && word.empty()) {
        int apart = 1;
        for (std::size_t at = around.begin;
             at >= 2 && text_[at - 1] == ' ' && text_[at - 2] == '.';)
            at -= 2, ++apart;
        return (apart > 3 || apart == 1) && around.nextCharacter != '.' &&
               g_unichar_islower(around.nextCharacter) == 0;
    }
    if (around.nextCharacter == '.')
        return false;
    if (around.stops > 1 || around.stop == 0x2026)
        return g_unichar_islower(around.nextCharacter) == 0;
    if (around.isClosed && !word.empty() && word.find('.') == std::string_view::npos &&
        word.size() > 3)
        return true;
    const glong letters = g_utf8_strlen(word.data(), static_cast<gssize>(word.size()));
    const bool nextIsNumber = g_unichar_isdigit(around.nextCharacter) != 0;
    if (nextIsNumber && NeedsNumber(word))
        return false;
    if (UsuallyEndsSentence(word))
        return g_unichar_islower(around.nextCharacter) == 0 && !IsTitle(around.next);
    if (MayEndSentence(word))
        return AbbreviationEnds(around);
    if (NeedsWhatFollows(word, language_))
        return false;
    if (letters == 1 && g_unichar_isalpha(CharacterAt(word, 0)) != 0)
        // "E. Smith", but "you and I. Did".
        return word == "I" && BeginsSentences(around.next) && around.next != "I";
    const bool isNumber = word.find_first_not_of("0123456789") == std::string_view::npos;
    if (isNumber && word.size() < 3 && HasDottedOrdinals(language_))
        return BeginsSentences(around.next);
    if (g_unichar_islower(around.nextCharacter) != 0)
        return false;
    return !isAbbreviation || BeginsSentences(around.next);
}

bool SentenceRules::AbbreviationEnds(const Around& around) const {
    if (g_unichar_islower(around.nextCharacter) != 0)
        return false;
    const bool isHour = around.word == "P.M" || around.word == "A.M";
    if (isHour && g_unichar_isupper(around.nextCharacter) != 0)
        return true;
    const gunichar first = CharacterAt(around.word, 0);
    // "etc. The"; "U.S. How", but "U.S. Government"; scripts without our list of
    // beginnings.
    if (first >= 0x80)
        return g_unichar_isupper(around.nextCharacter) != 0;
    return BeginsSentences(around.next) || around.nextIsOpened;
}

// Pairs of brackets and quotation marks that are not too far apart.
void SentenceRules::FindEnclosed() {
    constexpr std::u32string_view kOpen = U"(（「『《〈【«“„[‹";
    constexpr std::u32string_view kClose = U")）」』》〉】»””]›";
    std::vector<std::pair<std::size_t, std::size_t>> open;  // place, which
    std::optional<std::size_t> straight;
    for (std::size_t at = 0; at < text_.size();) {
        const gunichar character = CharacterAt(text_, at);
        const auto size = BytesOf(character);
        const std::size_t opens = kOpen.find(static_cast<char32_t>(character));
        // German quotations end as English ones begin.
        const bool closesLow =
            character == 0x201C && !open.empty() && kOpen[open.back().second] == U'„';
        const std::size_t closes =
            closesLow ? open.back().second : kClose.find(static_cast<char32_t>(character));
        if (character == '"') {
            if (straight && at - *straight < kLongEnclosed)
                enclosed_.push_back({*straight, at});
            straight = straight ? std::optional<std::size_t>() : at;
        } else if (opens != std::u32string_view::npos && !closesLow) {
            open.emplace_back(at, opens);
        } else if (closes != std::u32string_view::npos) {
            const auto pair = std::find_if(open.rbegin(), open.rend(), [&](const auto& one) {
                return one.second == closes || kClose[one.second] == kClose[closes];
            });
            if (pair != open.rend()) {
                if (at - pair->first < kLongEnclosed)
                    enclosed_.push_back({pair->first, at});
                open.erase(std::prev(pair.base()), open.end());
            }
        }
        at += size;
    }
}

bool SentenceRules::IsEnclosed(std::size_t end) const {
    return std::ranges::any_of(
        enclosed_, [end](const Stretch& one) { return one.begin < end && end <= one.end; });
}

// A sentence does not end behind the number that its item begins with.
bool SentenceRules::IsItemMark(std::size_t end) const {
    std::size_t at = std::min(end, text_.size());
    while (at > 0 && text_[at - 1] == ' ')
        --at;
    std::size_t begin = at;
    while (begin > 0 && at - begin < kLongestMark && g_ascii_isgraph(text_[begin - 1]))
        --begin;
    const std::optional<ItemMark> mark = MarkAt(text_.substr(begin));
    if (!mark || begin + mark->size != at)
        return false;
    const auto isItem = [this](std::size_t place) {
        return place == 0 || std::ranges::find(items_, place) != items_.end();
    };
    while (!isItem(begin) &&
           (text_[begin - 1] == ' ' || IsBullet(CharacterAt(text_, Before(text_, begin)))))
        begin = Before(text_, begin);
    return isItem(begin) || (mark->tail != "." && !mark->isLetter);
}

std::vector<std::size_t> SentenceRules::OwnStarts() const {
    std::vector<std::size_t> starts = items_;
    AddTightStops(starts);
    AddUnseenStops(starts);
    return starts;
}

// "1) one 2) two", "• one • two": marks that follow one another.
void SentenceRules::FindListItems() {
    const gunichar bullet = CharacterAt(text_, 0);
    if (IsBullet(bullet)) {
        const std::string_view mark = text_.substr(0, BytesOf(bullet));
        for (std::size_t at = text_.find(mark, 1); at != std::string_view::npos;
             at = text_.find(mark, at + 1))
            if (text_[at - 1] == ' ')
                items_.push_back(at);
        return;
    }
    std::optional<ItemMark> last = MarkAt(text_);
    for (std::size_t at = text_.find(' '); last && at != std::string_view::npos;
         at = text_.find(' ', at + 1)) {
        const std::optional<ItemMark> mark = MarkAt(text_.substr(at + 1));
        if (!mark || mark->value != last->value + 1 || mark->isLetter != last->isLetter ||
            mark->tail != last->tail)
            continue;
        items_.push_back(at + 1);
        last = mark;
    }
}

// Stops that ICU takes for an abbreviation's, because a number or dots follow, or does not know.
void SentenceRules::AddUnseenStops(std::vector<std::size_t>& starts) const {
    for (std::size_t at = text_.find(' '); at != std::string_view::npos;
         at = text_.find(' ', at + 1))
        if (at > 0 && at + 1 < text_.size() && IsUnseenStop(at))
            starts.push_back(at + 1);
}

bool SentenceRules::IsUnseenStop(std::size_t blank) const {
    const char before = text_[blank - 1];
    const std::string_view next = text_.substr(blank + 1);
    if (before == ':')  // the Armenian stop as it is typed
        return language_ == "hy";
    if (text_.substr(0, blank).ends_with("…"))
        return g_unichar_isupper(CharacterAt(next, 0)) != 0 && !IsEnclosed(blank);
    if (before != '.' ||
        (!g_ascii_isdigit(next[0]) && !next.starts_with("...") && !next.starts_with("…")))
        return false;
    const Around around = Look(blank + 1);
    const std::string_view word = around.word;
    const glong letters = g_utf8_strlen(word.data(), static_cast<gssize>(word.size()));
    return around.stops == 1 && letters > 3 && g_unichar_isalpha(CharacterAt(word, 0)) != 0 &&
           !IsEnclosed(blank) && !NeedsNumber(word) && !NeedsWhatFollows(word, language_) &&
           !MayEndSentence(word);
}

// "world.Today is", but neither "www.Example.com" nor "3.5".
void SentenceRules::AddTightStops(std::vector<std::size_t>& starts) const {
    for (std::size_t at = text_.find('.'); at != std::string_view::npos;
         at = text_.find('.', at + 1)) {
        if (at < 2 || at + 2 >= text_.size() || !g_ascii_isupper(text_[at + 1]) ||
            !g_ascii_islower(text_[at + 2]))
            continue;
        const bool behindWord = g_ascii_islower(text_[at - 1]) && g_ascii_islower(text_[at - 2]);
        const bool behindNumber = g_ascii_isdigit(text_[at - 1]) && g_ascii_isdigit(text_[at - 2]);
        const std::size_t begin = text_.find_last_of(' ', at) + 1;
        const std::size_t end = std::min(text_.find(' ', at), text_.size());
        const std::string_view token = text_.substr(begin, end - begin);
        const bool isAddress =
            token.find_first_of("/@_\\:=()") != std::string_view::npos || token.starts_with("www.");
        if ((behindWord || behindNumber) && !isAddress && !IsEnclosed(at + 1) &&
            (end < text_.size() || token.ends_with('.')))
            starts.push_back(at + 1);
    }
}
