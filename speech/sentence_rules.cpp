#include "speech/sentence_rules.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "speech/sentence_around.h"
#include "speech/sentence_characters.h"
#include "speech/sentence_words.h"

namespace {

constexpr std::size_t kLongestSeenWord = 400;
constexpr gunichar kLittleSection = 0x104A;  // the Burmese comma, which ICU takes for a stop
constexpr gunichar kFirstArmenian = 0x0530;
constexpr gunichar kFirstDevanagari = 0x0900;
constexpr gunichar kWideColon = 0xFF1A;
constexpr gunichar kUrduStop = 0x06D4;

bool IsCaseless(gunichar character) {
    return g_unichar_isalpha(character) != 0 && g_unichar_islower(character) == 0 &&
           g_unichar_isupper(character) == 0;
}

// Beside the full stop: of a script that has one of its own, whose dots belong to abbreviations.
bool HoldsOwnStop(std::string_view text) {
    constexpr std::string_view kOwn[] = {"।", "॥", "։", "።", "፡፡", "။"};
    return std::ranges::any_of(
        kOwn, [text](std::string_view stop) { return text.find(stop) != text.npos; });
}

// "ه.ش"
bool IsDottedLetters(std::string_view word) {
    constexpr glong kMostInPart = 2;
    for (std::size_t at = 0; at <= word.size();) {
        const std::size_t dot = std::min(word.find('.', at), word.size());
        if (CharactersIn(word.substr(at, dot - at)) > kMostInPart)
            return false;
        at = dot + 1;
    }
    return word.find('.') != std::string_view::npos;
}

bool IsRomanNumeral(std::string_view word) {
    return !word.empty() && word.find_first_not_of("IVXLCDM") == std::string_view::npos;
}

// "3" of "2.–3" and "2./3".
std::string_view LastDayOf(std::string_view word) {
    constexpr std::string_view kDigits = "0123456789";
    const std::size_t day = word.find_last_not_of(kDigits) + 1;
    for (const std::string_view sign : {".–", ".-", "./"})
        if (const std::string_view head = word.substr(0, day);
            head.ends_with(sign) && head.find_first_not_of(kDigits) == head.size() - sign.size())
            return word.substr(day);
    return word;
}

}  // namespace

SentenceRules::SentenceRules(std::string_view paragraph, std::string_view language)
    : text_(paragraph), language_(language), enclosures_(paragraph) {
    FindListItems();
}

SentenceRules::Around SentenceRules::Look(std::size_t end) const {
    Around around{};
    std::size_t at = end;
    while (at > 0 && IsWhite(CharacterAt(text_, Before(text_, at))))
        at = Before(text_, at);
    around.hasBlank = at < end;
    around.behind = at;
    // "« Quoi ? » dit-il"
    std::size_t closer = at;
    for (int marks = 0; closer > 0 && marks < kMostMarks; ++marks) {
        const gunichar before = CharacterAt(text_, Before(text_, closer));
        if (IsCloser(before)) {
            closer = at = Before(text_, closer);
            around.isClosed = true;
        } else if (around.isClosed && IsWhite(before)) {
            closer = Before(text_, closer);
        } else {
            at = IsStop(before) ? closer : at;
            break;
        }
    }
    std::size_t stop = at;
    while (stop > 0 && IsStop(CharacterAt(text_, Before(text_, stop)))) {
        if (around.stops++ == 0)
            around.stop = CharacterAt(text_, Before(text_, stop));
        stop = Before(text_, stop);
    }
    around.isBracketed =
        around.isClosed && stop > 0 && (text_[stop - 1] == '[' || text_[stop - 1] == '(');
    around.begin = WordBegin(stop);
    around.previous = WordBefore(around.begin);
    around.word = text_.substr(around.begin, stop - around.begin);
    LookBehind(end, around);
    return around;
}

// Of the word that ends there, without its opening marks.
std::size_t SentenceRules::WordBegin(std::size_t stop) const {
    std::size_t begin = stop;
    while (begin > 0 && stop - begin < kLongestSeenWord) {
        const gunichar before = CharacterAt(text_, Before(text_, begin));
        // "山田B.": a word behind others that no blank parts.
        if (IsWhite(before) || (before >= kFirstIdeograph && begin < stop))
            break;
        begin = Before(text_, begin);
    }
    const std::string_view opening = "\"'([{";
    while (begin < stop && (opening.find(text_[begin]) != std::string_view::npos))
        ++begin;
    while (begin < stop && g_unichar_ispunct(CharacterAt(text_, begin)) != 0 &&
           CharacterAt(text_, begin) > 0x7F)
        begin += BytesOf(CharacterAt(text_, begin));
    // "l'Ing."
    for (const std::string_view mark : {"'", "’"})
        if (const std::size_t elided = text_.substr(begin, stop - begin).rfind(mark);
            elided != std::string_view::npos && begin + elided + mark.size() + 1 < stop) {
            const std::size_t behind = begin + elided + mark.size();
            const std::string_view word = text_.substr(behind, stop - behind);
            if (word != "est" && word != "ago")  // "de l’est.": no short forms there
                begin = behind;
        }
    return begin;
}

void SentenceRules::LookBehind(std::size_t end, Around& around) const {
    std::size_t next = end;
    for (int marks = 0; next < text_.size() && marks < kMostMarks; ++marks) {
        const gunichar character = CharacterAt(text_, next);
        const bool opens = g_unichar_ispunct(character) != 0 && character != '-' &&
                           character != '.' && !IsDash(character);
        if (!opens && !IsWhite(character) && !IsDash(character))
            break;
        if (opens && !around.nextIsOpened)
            around.opening = character;
        around.nextIsOpened = around.nextIsOpened || opens;
        next += BytesOf(character);
    }
    next = std::min(next, text_.size());
    around.nextAt = next;
    around.nextCharacter = CharacterAt(text_, next);
    around.next =
        text_.substr(next, std::min(text_.find_first_of(" ,;:.!?\"')", next), text_.size()) - next);
}

// Where the character before the place and the white space there begins, or the text.
std::size_t SentenceRules::LastBefore(std::size_t place) const {
    std::size_t at = Before(text_, place);
    while (at > 0 && IsWhite(CharacterAt(text_, at)))
        at = Before(text_, at);
    return at;
}

std::string_view SentenceRules::WordBefore(std::size_t begin) const {
    const std::size_t last = text_.substr(0, begin).find_last_not_of(' ');
    if (last == std::string_view::npos)
        return {};
    const std::size_t blank = text_.find_last_of(' ', last);
    const std::size_t first = blank == std::string_view::npos ? 0 : blank + 1;
    return text_.substr(first, last + 1 - first);
}

// ICU takes every quotation mark for a closing one.
std::size_t SentenceRules::StartBehind(std::size_t end, bool isAbbreviation) const {
    if (end >= text_.size())
        return 0;
    std::size_t start = end;
    if (enclosures_.BeginAt(Before(text_, end)))
        start = Before(text_, end);
    return EndsAt(start, isAbbreviation) ? start : 0;
}

bool SentenceRules::EndsAt(std::size_t end, bool isAbbreviation) const {
    const Around around = Look(end);
    if (around.nextCharacter == 0 || enclosures_.Hold(end) || IsItemMark(end) ||
        around.isBracketed || GoesOnBehindQuotation(around) ||
        (around.behind > 0 && CharacterAt(text_, Before(text_, around.behind)) == kLittleSection))
        return false;
    if (around.stop == '.' || around.stop == 0x2026)
        return StopEnds(around, isAbbreviation);
    if (around.stop == kUrduStop)
        return !NeedsWhatFollows(around.word, language_);
    // "Stop!" he said. Yahoo! in the ...
    if ((around.stop == '!' || around.stop == '?' || around.stop == ';') &&
        g_unichar_islower(around.nextCharacter) != 0 && !around.nextIsOpened)
        return false;
    return !BelongsToName(around);
}

// "「はい。」と言った", "“不。”他说": in scripts without small letters only the words tell.
bool SentenceRules::GoesOnBehindQuotation(const Around& around) const {
    if (!around.isClosed || !IsCaseless(around.nextCharacter))
        return false;
    const std::optional<std::size_t> open = enclosures_.OpenOf(Before(text_, around.behind));
    const gunichar before = open && *open > 0 ? CharacterAt(text_, LastBefore(*open)) : 0;
    const bool isAnnounced = before == ':' || before == kWideColon;
    if (GoesOnWithParticle(text_.substr(around.nextAt)) ||
        (!isAnnounced && SaysWhatWasQuoted(text_.substr(around.nextAt))))
        return true;
    if (around.hasBlank || before == 0)
        return false;
    return !IsStop(before) && g_unichar_ispunct(before) == 0;
}

// "モーニング娘。の"
bool SentenceRules::BelongsToName(const Around& around) const {
    if (around.hasBlank || around.nextCharacter < kFirstIdeograph)
        return false;
    const std::string_view next = text_.substr(around.nextAt);
    constexpr std::string_view kOf = "の";
    return next.starts_with("を") ||
           (next.starts_with(kOf) &&
            g_unichar_get_script(CharacterAt(next, kOf.size())) != G_UNICODE_SCRIPT_HIRAGANA);
}

bool SentenceRules::StopEnds(const Around& around, bool isAbbreviation) const {
    const std::string_view word = around.word;
    // An ellipsis of three stops, close or apart, goes on; a fourth one ends.
    if (around.stops == 1 && word.empty()) {
        if (!around.hasBlank)  // ".NET"
            return false;
        int apart = 1;
        for (std::size_t at = around.begin;
             at >= 2 && text_[at - 1] == ' ' && text_[at - 2] == '.';)
            at -= 2, ++apart;
        return (apart > 3 || apart == 1) && around.nextCharacter != '.' &&
               g_unichar_islower(around.nextCharacter) == 0;
    }
    if (around.nextCharacter == '.' ||
        (!around.hasBlank && IsCaseless(around.nextCharacter) && CharactersIn(word) <= 2))
        return false;
    if (around.stops > 1 || around.stop == 0x2026)
        return g_unichar_islower(around.nextCharacter) == 0;
    if (around.isClosed && !word.empty() && word.find('.') == std::string_view::npos &&
        word.size() > 3)
        return true;
    return WordEnds(around, isAbbreviation);
}

// Where no capital letters tell.
bool SentenceRules::IsDotOfAbbreviation(const Around& around) const {
    const gunichar first = CharacterAt(around.word, 0);
    if (!IsCaseless(first) || first >= kFirstIdeograph)
        return first >= kFirstArmenian && first < kFirstDevanagari && HoldsOwnStop(text_);
    return HoldsOwnStop(text_) || IsDottedLetters(around.word) ||
           (first >= kFirstDevanagari && CharactersIn(around.word) <= 3);
}

// Behind one full stop.
bool SentenceRules::WordEnds(const Around& around, bool isAbbreviation) const {
    const std::string_view word = around.word;
    const bool isBeforeSmall = g_unichar_islower(around.nextCharacter) != 0;
    const bool isBeforeNumber = g_unichar_isdigit(around.nextCharacter) != 0;
    if (IsDotOfAbbreviation(around))
        return false;
    if (isBeforeNumber && NeedsNumber(word))
        return false;
    if (around.opening == 0xBF || around.opening == 0xA1)  // "p. m. ¿Te viene bien?"
        return true;
    if (IsStreet(around))
        return g_unichar_isupper(around.nextCharacter) != 0;
    if (IsMonthBehindDay(around) && (isBeforeNumber || BeginsSentences(around.next)))
        return !isBeforeNumber;
    if (const auto ends = EndsBehind(word, around.previous); ends)
        return *ends && !isBeforeSmall && !isBeforeNumber && !IsDateAhead(around);
    if (UsuallyEndsSentence(word))
        return !isBeforeSmall && !IsTitle(around.next);
    if (word.find('.') != std::string_view::npos && NeedsWhatFollows(word, language_))  // "o.a"
        return false;
    if (MayEndSentence(word))
        return AbbreviationEnds(around);
    if (NeedsWhatFollows(word, language_))
        return false;
    if (CharactersIn(word) == 1 && g_unichar_isalpha(CharacterAt(word, 0)) != 0)
        return LetterEnds(around);
    const std::string_view day = LastDayOf(word);
    const bool isNumber = day.find_first_not_of("0123456789") == std::string_view::npos;
    if (isNumber && day.size() < 3 && isBeforeNumber)  // "12. 5. 2012"
        return false;
    if (isNumber && day.size() < 3 && HasDottedOrdinals(language_))
        return BeginsSentences(around.next) || IsHouseNumber(around);
    // Polish has the ordinal's stop behind figures alone.
    if (IsRomanNumeral(word) && word.size() > 1 && HasDottedOrdinals(language_) &&
        language_ != "pl")
        return BeginsSentences(around.next);
    return !isBeforeSmall && (!isAbbreviation || BeginsSentences(around.next));
}

// "le 14 juil. 2020", "am 5. Jan. in Hamburg"
bool SentenceRules::IsMonthBehindDay(const Around& around) {
    const std::string_view day = around.previous;
    return EndsInNumber(day.substr(0, day.find_last_not_of('.') + 1)) && IsShortMonth(around.word);
}

// "W 1918 r. Polska odzyskała niepodległość."
bool SentenceRules::IsDateAhead(const Around& around) const {
    constexpr std::string_view kAhead[] = {"W",  "Od", "Do",    "Około",  "Przed", "В",    "С",
                                           "До", "К",  "После", "Весной", "Летом", "Зимой"};
    const auto begin = static_cast<std::size_t>(around.previous.data() - text_.data());
    return (language_ == "pl" || language_ == "ru" || language_ == "bg") &&
           std::ranges::find(kAhead, WordBefore(begin)) != std::end(kAhead);
}

// "He lives in 5th St. Turn left"
bool SentenceRules::IsStreet(const Around& around) const {
    constexpr std::string_view kStreets[] = {"St", "Ave", "Rd", "Blvd"};
    constexpr std::string_view kOrdinals[] = {"st", "nd", "rd", "th"};
    const std::string_view number = around.previous;
    // "the 25th St. Petersburg Forum"
    if (around.word == "St" && !BeginsSentences(around.next) && around.next != "Turn")
        return false;
    return std::ranges::find(kStreets, around.word) != std::end(kStreets) && number.size() > 2 &&
           g_ascii_isdigit(number[0]) &&
           std::ranges::find(kOrdinals, number.substr(number.size() - 2)) != std::end(kOrdinals);
}

// "ul. Długiej 5. Pracuje", where what an ordinal number stands before is written small.
bool SentenceRules::IsHouseNumber(const Around& around) const {
    constexpr std::string_view kSmallMonths[] = {"pl", "cs", "sk", "sl", "hr"};
    constexpr std::string_view kStreets[] = {"ul. ", "al. ", "pl. ", "os. ", "nám. ", "ulica "};
    constexpr std::size_t kNear = 48;
    const std::size_t near = around.begin - std::min(around.begin, kNear);
    const std::string_view before = text_.substr(near, around.begin - near);
    if (std::ranges::none_of(kStreets, [before](std::string_view street) {
            return before.find(street) != std::string_view::npos;
        }))
        return false;
    return g_unichar_isupper(CharacterAt(around.previous, 0)) != 0 && around.begin > 0 &&
           CharactersIn(around.previous) > 2 && g_unichar_isupper(around.nextCharacter) != 0 &&
           std::ranges::find(kSmallMonths, language_) != std::end(kSmallMonths);
}

// "E. Smith", but "you and I. Did", "Plan B. That" and "1.85 m. She".
bool SentenceRules::LetterEnds(const Around& around) const {
    if (g_unichar_islower(CharacterAt(around.word, 0)) != 0 && EndsInNumber(around.previous))
        return g_unichar_isupper(around.nextCharacter) != 0 && CharactersIn(around.next) > 1;
    const std::size_t behind = around.nextAt + around.next.size() + 1;
    const bool isOfName = language_ != "de" && MayBeOfName(around.next, "") &&  // "J. Le Goff"
                          g_unichar_isupper(CharacterAt(text_, behind)) != 0;
    return BeginsSentences(around.next) && CharactersIn(around.next) > 1 && !isOfName &&
           !MayBeOfName(around.next, language_);
}

bool SentenceRules::AbbreviationEnds(const Around& around) const {
    if (g_unichar_islower(around.nextCharacter) != 0)
        return false;
    constexpr std::string_view kTimes[] = {"P.M", "A.M"};
    constexpr std::string_view kEras[] = {"B.C", "A.D", "B.C.E"};  // "In 44 B.C. Caesar died."
    const bool isTime = std::ranges::find(kTimes, around.word) != std::end(kTimes) ||
                        (std::ranges::find(kEras, around.word) != std::end(kEras) &&
                         !EndsInNumber(around.previous));
    if (isTime && g_unichar_isupper(around.nextCharacter) != 0)
        return true;
    const gunichar first = CharacterAt(around.word, 0);
    // "etc. The"; "U.S. How", but "U.S. Government"; scripts without our list of
    // beginnings.
    constexpr gunichar kFirstCyrillic = 0x0400;
    const bool isInitials = first >= kFirstCyrillic && g_unichar_isupper(first) != 0 &&
                            CharactersIn(around.word) <= 3;  // "Л.Н. Толстой"
    if (first >= 0x80 && !isInitials)
        return g_unichar_isupper(around.nextCharacter) != 0;
    const bool isBracketAhead =
        (around.opening == '(' || around.opening == '[') && g_unichar_isupper(first) != 0;
    return BeginsSentences(around.next) || (around.nextIsOpened && !isBracketAhead);
}
