// Sentences that ICU does not see: the second half of the rules of sentences.
#include <glib.h>

#include <algorithm>
#include <optional>

#include "speech/sentence_around.h"
#include "speech/sentence_characters.h"
#include "speech/sentence_rules.h"
#include "speech/sentence_words.h"

namespace {

constexpr std::size_t kLongestMark = 12;
// Between the marks of two items, when these are capital letters: no initials.
constexpr std::size_t kLeastInItem = 8;

}  // namespace

// A sentence does not end behind the number that its item begins with.
bool SentenceRules::IsItemMark(std::size_t end) const {
    std::size_t at = std::min(end, text_.size());
    while (at > 0 && text_[at - 1] == ' ')
        --at;
    std::size_t begin = at;
    while (begin > 0 && at - begin < kLongestMark) {
        const gunichar before = CharacterAt(text_, Before(text_, begin));
        if (IsWhite(before) || IsBullet(before) || (before >= kFirstIdeograph && begin < at))
            break;
        begin = Before(text_, begin);
    }
    const std::optional<ItemMark> mark = MarkAt(text_.substr(begin));
    if (!mark || begin + mark->size != at)
        return false;
    const auto isItem = [this](std::size_t place) {
        return place == 0 || std::ranges::find(items_, place) != items_.end();
    };
    while (!isItem(begin) &&
           (text_[begin - 1] == ' ' || IsBullet(CharacterAt(text_, Before(text_, begin)))))
        begin = Before(text_, begin);
    const auto open = enclosures_.OpenOf(at - 1);  // "(see p. 3.)"
    return isItem(begin) ||
           (mark->tail.ends_with(')') && !mark->isLetter && (!open || *open == begin));
}

std::vector<std::size_t> SentenceRules::OwnStarts() const {
    std::vector<std::size_t> starts = items_;
    AddTightStops(starts);
    AddUnseenStops(starts);
    AddSpacedQuotations(starts);
    AddSpeeches(starts);
    AddBehindSmileys(starts);
    return starts;
}

// Of a dash behind a blank: what is said behind the end of a sentence, not who said it.
bool SentenceRules::BeginsSpeech(std::size_t dash) const {
    std::size_t at = LastBefore(dash);
    for (int marks = 0; at > 0 && marks < kMostMarks && IsCloser(CharacterAt(text_, at)); ++marks)
        at = LastBefore(at);
    std::size_t next = dash + BytesOf(CharacterAt(text_, dash));
    for (int marks = 0; marks < kMostMarks; ++marks) {
        const gunichar character = CharacterAt(text_, next);
        if (!IsWhite(character) && g_unichar_ispunct(character) == 0)
            break;
        next += BytesOf(character);
    }
    // "Mon. – Fri.", "The U.S. – Mexico border"
    const bool isShortened = CharacterAt(text_, at) == '.' && CharacterAt(text_, dash) != 0x2014;
    return IsStop(CharacterAt(text_, at)) && !isShortened &&
           g_unichar_isupper(CharacterAt(text_, next)) != 0;
}

// "« Vous êtes sûr ? — Absolument. »": within one quotation several speak.
void SentenceRules::AddSpeeches(std::vector<std::size_t>& starts) const {
    for (const std::string_view dash : {"–", "—"})
        for (std::size_t at = text_.find(dash); at != std::string_view::npos;
             at = text_.find(dash, at + dash.size()))
            if (at > 1 && text_[at - 1] == ' ' && BeginsSpeech(at))
                starts.push_back(at);
}

// "Nothing helped :( Thanks"
void SentenceRules::AddBehindSmileys(std::vector<std::size_t>& starts) const {
    constexpr std::string_view kSmileys[] = {" :)",  " :(", " ;)", " :-)", " :-(",
                                             " ;-)", " :D", " :P", " ))",  " (("};
    for (const std::string_view smiley : kSmileys)
        for (std::size_t at = text_.find(smiley); at != std::string_view::npos;
             at = text_.find(smiley, at + smiley.size())) {
            std::size_t end = at + smiley.size();
            while (end < text_.size() && text_[end] == smiley.back())
                ++end;
            if (end + 1 < text_.size() && text_[end] == ' ' &&
                g_unichar_isupper(CharacterAt(text_, end + 1)) != 0)
                starts.push_back(end + 1);
        }
}

// "1) one 2) two", "• one • two": marks that follow one another.
void SentenceRules::FindListItems() {
    const gunichar bullet = CharacterAt(text_, 0);
    if (IsBullet(bullet)) {
        const std::string_view mark = text_.substr(0, BytesOf(bullet));
        // "— Из Москвы, — ответила она.", where a list has no stops.
        bool isDialogue = false;
        for (std::size_t at = text_.find_first_of(".!?");
             IsDash(bullet) && !isDialogue && at != std::string_view::npos;
             at = text_.find_first_of(".!?", at + 1))
            isDialogue = at + 1 >= text_.size() || !g_ascii_isalnum(text_[at + 1]);
        for (std::size_t at = text_.find(mark, 1); at != std::string_view::npos;
             at = text_.find(mark, at + 1))
            if (text_[at - 1] == ' ' && (!isDialogue || BeginsSpeech(at)))
                items_.push_back(at);
        return;
    }
    std::optional<ItemMark> last = MarkAt(text_);
    if (!last)
        return;
    std::size_t behindLast = last->size;
    for (std::size_t at = behindLast; at < text_.size(); at += BytesOf(CharacterAt(text_, at))) {
        const gunichar before = CharacterAt(text_, Before(text_, at));
        if (before != ' ' && (before < kFirstIdeograph || !IsStop(before)))
            continue;
        const std::optional<ItemMark> mark = MarkAt(text_.substr(at));
        if (!mark || mark->value != last->value + 1 || mark->isLetter != last->isLetter ||
            mark->tail != last->tail || (mark->isCapital && at < behindLast + kLeastInItem))
            continue;
        items_.push_back(at);
        behindLast = at + mark->size;
        last = mark;
    }
}

// "« Quoi ? » Personne ...": ICU sees a sentence end before the closing mark.
void SentenceRules::AddSpacedQuotations(std::vector<std::size_t>& starts) const {
    for (std::size_t at = text_.find("» "); at != std::string_view::npos;
         at = text_.find("» ", at + 1)) {
        const std::size_t start = at + std::string_view("» ").size();
        if (at == 0 || start >= text_.size() || !IsWhite(CharacterAt(text_, Before(text_, at))))
            continue;
        const Around around = Look(start);
        if (around.stops > 0 && g_unichar_isupper(around.nextCharacter) != 0 &&
            EndsAt(start, false))
            starts.push_back(start);
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
    // "'s Avonds"
    const std::size_t mark = next.starts_with("’") ? std::string_view("’").size() : 1;
    if (before == '.' && language_ == "nl" && next.size() > mark + 2 &&
        (mark > 1 || next[0] == '\'') && next[mark + 1] == ' ')
        return g_ascii_isupper(next[mark + 2]);
    if (before == ':')  // the Armenian stop as it is typed
        return language_ == "hy";
    if (text_.substr(0, blank).ends_with("፡፡"))  // as the Ethiopic stop is typed
        return !enclosures_.Hold(blank);
    if (text_.substr(0, blank).ends_with("…"))
        return g_unichar_isupper(CharacterAt(next, 0)) != 0 && !enclosures_.Hold(blank);
    if (before != '.' ||
        (!g_ascii_isdigit(next[0]) && !next.starts_with("...") && !next.starts_with("…")))
        return false;
    const Around around = Look(blank + 1);
    const std::string_view word = around.word;
    const glong letters = g_utf8_strlen(word.data(), static_cast<gssize>(word.size()));
    // "3-2. 1,500 people"
    constexpr std::size_t kLongNumber = 4;
    if (EndsInNumber(word) && word.size() > 2 && next.find(' ') >= kLongNumber)
        return around.stops == 1 && !HasDottedOrdinals(language_) && !enclosures_.Hold(blank) &&
               !IsItemMark(blank);
    return around.stops == 1 && letters > 3 && g_unichar_isalpha(CharacterAt(word, 0)) != 0 &&
           !enclosures_.Hold(blank) && !NeedsNumber(word) && !NeedsWhatFollows(word, language_) &&
           !MayEndSentence(word) && !IsMonthBehindDay(around);
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
        if ((behindWord || behindNumber) && !isAddress && !enclosures_.Hold(at + 1) &&
            (end < text_.size() || token.ends_with('.')))
            starts.push_back(at + 1);
    }
}
