#include "documents/divided_words.h"

#include <glib.h>

#include <algorithm>
#include <iterator>

#include "documents/small_texts.h"

namespace {

constexpr std::string_view kHyphens[] = {"-", "\xe2\x80\x90", "\xc2\xad"};
constexpr std::string_view kSoft = "\xc2\xad";
// Bytes that are looked at of what stands in one: a text without an end costs no more.
constexpr std::size_t kLongestDivided = 200;

char32_t CharacterBefore(std::string_view text, std::size_t at) {
    std::size_t begin = at;
    while (begin > 0 && (static_cast<unsigned char>(text[begin - 1]) & 0xC0U) == 0x80U)
        --begin;
    return begin == 0 ? 0 : g_utf8_get_char(text.data() + begin - 1);
}

// Letters at the end or the beginning of a text, as one word.
std::string_view LastLetters(std::string_view text) {
    std::size_t begin = text.size();
    while (begin > 0 && text.size() - begin < kLongestDivided &&
           g_unichar_isalpha(CharacterBefore(text, begin)))
        begin = static_cast<std::size_t>(g_utf8_find_prev_char(text.data(), text.data() + begin) -
                                         text.data());
    return text.substr(begin);
}

std::string_view FirstLetters(std::string_view text) {
    const char* at = text.data();
    const char* const end = text.data() + std::min(text.size(), kLongestDivided);
    while (at < end && g_unichar_isalpha(g_utf8_get_char(at)))
        at = g_utf8_next_char(at);
    return text.substr(0, static_cast<std::size_t>(at - text.data()));
}

bool AreCapitals(std::string_view text) {
    for (const char* at = text.data(); at < text.data() + text.size(); at = g_utf8_next_char(at))
        if (!g_unichar_isupper(g_utf8_get_char(at)))
            return false;
    return true;
}

// "Haupt- und Nebensatz", "16- or 32-bit": the hyphen stands for what comes later.
bool GoesOnBehindHyphen(std::string_view second, bool isBehindDigit) {
    constexpr std::string_view kWords[] = {"and", "bis", "eller", "och", "oder", "og",
                                           "or",  "tai", "to",    "und", "vagy", "és"};
    const auto* const found = std::find(std::begin(kWords), std::end(kWords), second);
    // "fact-or", "pho-to", "Kür-bis" are divided so.
    const bool mayEndWord = second == "or" || second == "to" || second == "bis";
    return found != std::end(kWords) && (isBehindDigit || !mayEndWord);
}

bool BeginsAddress(std::string_view text) {
    return text.starts_with("http://") || text.starts_with("https://") || text.starts_with("www.");
}

// "releases/stable" or "page2.html", and no word of the sentence that goes on.
bool IsPartOfAddress(std::string_view word) {
    word = word.substr(0, word.find_last_not_of(".,;:!?)") + 1);
    if (word.find_first_of("/_=&?%#") != std::string_view::npos)
        return true;
    const bool hasDigits = std::ranges::any_of(word, [](char c) { return g_ascii_isdigit(c); });
    const bool hasLetters = std::ranges::any_of(word, [](char c) { return g_ascii_isalpha(c); });
    // Not "e.g.".
    const std::size_t stop = word.rfind('.');
    return hasLetters && (hasDigits || (stop != std::string_view::npos && stop + 2 < word.size()));
}

// An address is broken where its parts end, and gets no hyphen: "http://example.org/a-" "page/2".
bool GoesOnAddress(std::string_view text, std::string_view line) {
    text = text.substr(text.size() - std::min(text.size(), kLongestDivided));
    const std::size_t begin = text.find_last_of(" \n(<\"") + 1;
    const std::string_view last = text.substr(begin);
    if (!BeginsAddress(last))
        return false;
    const std::string_view next = line.substr(0, line.find(' '));
    // "Source:" begins a line of a listing.
    if (last.ends_with("://"))
        return !next.starts_with("http");
    if (next.empty() || next.ends_with(':') || BeginsAddress(next) ||
        (!g_ascii_isalnum(next.front()) && next.front() != '~'))
        return false;
    // Many an address ends so. One in brackets goes on until they close.
    if (last.back() == '/') {
        const char opener = begin > 0 ? text[begin - 1] : ' ';
        const char closer = opener == '(' ? ')' : '>';
        const bool isBracketed = opener == '(' || opener == '<';
        return IsPartOfAddress(next) ||
               (isBracketed && next.find(closer) != std::string_view::npos);
    }
    constexpr std::string_view kParts = "-_=&?%";
    // A stop may be the sentence's.
    return kParts.find(last.back()) != std::string_view::npos ||
           (last.back() == '.' && g_ascii_islower(next.front()) &&
            next.find('/') != std::string_view::npos);
}

}  // namespace

void DividedWords::Learn(std::string_view line) {
    std::size_t at = 0;
    while (at < line.size()) {
        const std::string_view word = FirstLetters(line.substr(at));
        if (word.empty()) {
            at += std::max<std::size_t>(
                static_cast<std::size_t>(g_utf8_next_char(line.data() + at) - line.data()) - at, 1);
            continue;
        }
        words_.emplace(word);
        at += word.size();
        if (at < line.size() && line[at] == '-')
            if (const std::string_view next = FirstLetters(line.substr(at + 1)); !next.empty())
                words_.insert(std::string(word) + "-" + std::string(next));
    }
}

bool DividedWords::Join(std::string& text, std::string_view line) const {
    if (GoesOnAddress(text, line)) {
        text += line;
        return true;
    }
    for (const std::string_view hyphen : kHyphens) {
        if (!text.ends_with(hyphen))
            continue;
        const std::string_view before =
            std::string_view(text).substr(0, text.size() - hyphen.size());
        const std::string first(LastLetters(before));
        const std::string second(FirstLetters(line));
        const bool isBehindDigit = !before.empty() && g_ascii_isdigit(before.back());
        if (hyphen != kSoft && GoesOnBehindHyphen(second, isBehindDigit) &&
            (first.empty() || !Holds(first + second)))
            return false;
        if (hyphen != kSoft && (second.empty() || first.empty())) {
            // "1990-1995", "16-bit".
            const bool isOfNumber = isBehindDigit && !line.empty() &&
                                    (g_ascii_isdigit(line.front()) || !second.empty());
            // "--name" of a command.
            const bool isOption = before.ends_with(" -") && !second.empty();
            if (!isOfNumber && !isOption)
                return false;
        } else if (hyphen == kSoft || !KeepsHyphen(before, first, second)) {
            text.resize(before.size());
        }
        text += line;
        return true;
    }
    return false;
}

bool DividedWords::KeepsHyphen(std::string_view before, const std::string& first,
                               const std::string& second) const {
    // "ELE-MENT", not "T-SHIRT".
    const bool areCapitals = first.size() > 1 && AreCapitals(first + second);
    if ((!BeginsLower(second) && !areCapitals) || Holds(first + "-" + second))
        return true;
    if (Holds(first + second))
        return false;
    // "state-of-the-" goes on as it began.
    const std::size_t at = before.size() - first.size();
    return at > 0 && before[at - 1] == '-' && Holds(second);
}
