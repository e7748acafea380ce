// Dates, days, years and times of day.
#include <glib.h>

#include <algorithm>
#include <array>

#include "foundation/owned_text.h"
#include "speech/number_words.h"
#include "speech/sentence_words.h"
#include "speech/spoken_forms.h"

namespace {

std::string Replaced(std::string text, std::string_view what, const std::string& with) {
    if (const std::size_t at = text.find(what); at != std::string::npos)
        text.replace(at, what.size(), with);
    return text;
}

constexpr std::string_view kBeforeLocative = " в во о об на ";
constexpr std::string_view kBeforeDative = " к ко ";

}  // namespace

bool SpokenForms::IsMonth(const std::string& word) const {
    return std::ranges::find(forms_->months, word) != forms_->months.end();
}

// 0 for January; -1 where none stands. Short forms are beginnings of the names; their end comes
// behind the stop.
int SpokenForms::MonthAt(std::size_t at, std::size_t& end) const {
    constexpr glong kShortest = 3;
    const std::string word = WordBehind(at);
    end = at + word.size();
    int month = -1;
    for (int i = 0; i < static_cast<int>(forms_->months.size()); ++i) {
        const std::string_view name = forms_->months[static_cast<std::size_t>(i)];
        if (name == word)
            return i;
        if (!name.starts_with(word))
            continue;
        if (month >= 0)  // "jui." of "juin" and "juillet"
            return -1;
        month = i;
    }
    if (CharacterAt(end) != '.' || g_utf8_strlen(word.c_str(), -1) < kShortest)
        return -1;
    ++end;
    return month;
}

std::string SpokenForms::DayWords(int day, std::size_t at) const {
    const OwnedText small(g_utf8_strdown(WordBefore(at).c_str(), -1));
    const std::string before = small.get();
    const OrdinalOf of = IsAmong(forms_->ofThatDay, before)  ? OrdinalOf::kThatDay
                         : IsAmong(forms_->ofTheDay, before) ? OrdinalOf::kTheDay
                                                             : OrdinalOf::kDay;
    std::string words = OrdinalWords(language_, of, day);
    if (!words.empty())
        return words;
    if (day == 1 && (language_ == "fr" || language_ == "it"))
        return language_ == "fr" ? "premier" : "primo";
    return std::to_string(day);
}

// Whether "am" or the like stands before.
bool SpokenForms::IsOnThatDay(std::size_t at) const {
    const OwnedText small(g_utf8_strdown(WordBefore(at).c_str(), -1));
    return IsAmong(forms_->ofThatDay, small.get());
}

// "der 2. Weltkrieg", not "Platz 3. Mal sehen".
bool SpokenForms::IsOrdered(std::size_t at, const std::string& noun) const {
    if (!IsAmong(forms_->orderedNouns, noun))
        return false;
    const std::string before = WordBefore(at);
    const OwnedText small(g_utf8_strdown(before.c_str(), -1));
    return before.empty() || g_unichar_islower(g_utf8_get_char(before.c_str())) != FALSE ||
           IsAmong(forms_->ofTheDay, small.get()) || IsAmong(forms_->ofThatDay, small.get());
}

// "25.12.2026", "12/25/2026", "2026-12-25".
std::optional<std::size_t> SpokenForms::Date(std::size_t at) {
    std::size_t end = at;
    int parts[3] = {};
    std::size_t sizes[3] = {};
    char mark = '\0';
    for (int i = 0; i < 3; ++i) {
        const std::size_t begin = end;
        parts[i] = ReadDigits(end, 4);
        sizes[i] = end - begin;
        if (parts[i] < 0 || i == 2)
            break;
        if (end >= text_.size() || (i == 1 && text_[end] != mark))
            return std::nullopt;
        mark = text_[end++];
        // "25. 12. 2026"
        if (mark == '.' && forms_->hasDottedDays)
            end = BehindBlank(end);
    }
    const bool isIso = mark == '-' && sizes[0] == 4 && sizes[1] == 2 && sizes[2] == 2;
    const bool isUsual =
        (mark == '.' || mark == '/') && sizes[0] <= 2 && sizes[1] <= 2 && sizes[2] == 4;
    if ((!isIso && !isUsual) || !EndsToken(end))
        return std::nullopt;
    int day = isIso ? parts[2] : parts[0];
    int month = parts[1];
    const int year = isIso ? parts[0] : parts[2];
    const bool isMonthFirst = mark == '/' && forms_->dateOrder == DateOrder::kMonthFirst;
    // Whoever writes 25/12 to Americans means the same day as they do with 12/25.
    if ((isMonthFirst && day <= 12) || (!isIso && month > 12))
        std::swap(day, month);
    if (month < 1 || month > 12 || day < 1 || day > 31)
        return std::nullopt;
    said_ = Replaced(std::string(forms_->date), "{d}", DayWords(day, at));
    said_ =
        Replaced(said_, "{m}", std::string(forms_->months[static_cast<std::size_t>(month - 1)]));
    said_ = Replaced(
        said_, "{y}",
        language_ == "ru" ? RussianPlaceWords(RussianCase::kGenitive, year) : std::to_string(year));
    return end;
}

// The day of "3. Mai", "25 декабря", "1 mai", with the month where that is a short form.
std::optional<std::size_t> SpokenForms::DottedDay(std::size_t at) {
    std::size_t end = at;
    const int day = ReadDigits(end, 2);
    if (day < 1 || day > 31)
        return std::nullopt;
    if (forms_->hasDottedDays) {
        if (end >= text_.size() || text_[end] != '.')
            return std::nullopt;
        ++end;
    }
    // "Am 24.12." leaves out its year.
    std::size_t second = end;
    const int number = forms_->hasDottedDays ? ReadDigits(second, 2) : -1;
    if (number >= 1 && number <= 12 && CharacterAt(second) == '.' &&
        !g_unichar_isalnum(CharacterAt(second + 1)) && IsOnThatDay(at)) {
        said_ = DayWords(day, at) + " " +
                std::string(forms_->months[static_cast<std::size_t>(number - 1)]);
        return second + 1;
    }
    // "1° maggio"
    if (day == 1 && language_ == "it" && text_.substr(end).starts_with("°"))
        end += std::string_view("°").size();
    const std::size_t place = BehindBlank(end);
    std::size_t behind = 0;
    const int month = MonthAt(place, behind);
    if (place == end || (month < 0 && !IsOrdered(at, WordBehind(place))))
        return std::nullopt;
    said_ = DayWords(day, at);
    if (month < 0 || text_[behind - 1] != '.')
        return end;
    // "ha vinto in 3 set."
    if (!forms_->hasDottedDays && !GoesOnBehind(behind))
        return std::nullopt;
    said_ += " " + std::string(forms_->months[static_cast<std::size_t>(month)]);
    return GoesOnBehind(behind) ? behind : behind - 1;  // that stop is the sentence's, too
}

std::string SpokenForms::SmallWordBefore(std::size_t at) const {
    const OwnedText small(g_utf8_strdown(WordBefore(at).c_str(), -1));
    return small.get();
}

// Of a Russian year or century that is written short. Behind most nouns, and behind a month, it is
// in the genitive.
RussianCase SpokenForms::CaseAt(std::size_t at) const {
    const std::string before = SmallWordBefore(at);
    const bool isBehindStop = at > 1 && text_.substr(0, at).ends_with(". ");
    const bool isFirst = isBehindStop ? !IsShortMonth(WordBefore(at - 2)) : before.empty();
    return isFirst || before == "по" || before == "за"
               ? RussianCase::kNominative  // the accusative, too
           : IsAmong(kBeforeLocative, before) ? RussianCase::kLocative
           : IsAmong(kBeforeDative, before)   ? RussianCase::kDative
                                              : RussianCase::kGenitive;
}

// The number and its short noun, which ends before a stop. That is the sentence's, too, where
// nothing shows that it goes on.
std::optional<std::size_t> SpokenForms::RussianShort(std::size_t at, int number, std::size_t end,
                                                     const RussianNouns& nouns) {
    if (CharacterAt(end) != '.')
        return std::nullopt;
    const RussianCase wanted = CaseAt(at);
    said_ = RussianPlaceWords(wanted, number) + " " +
            std::string(nouns[static_cast<std::size_t>(wanted)]);
    return GoesOnBehind(end + 1) ? end + 1 : end;
}

// "в 1941–1945 гг.", "1941-1945 годы", whose first year ends there.
std::optional<std::size_t> SpokenForms::YearSpan(std::size_t at, int year, std::size_t end) {
    static constexpr RussianNouns kNouns = {"годы", "годов", "годам", "годах"};
    const std::size_t dash = BehindBlank(end);
    const std::string_view rest = text_.substr(dash);
    const std::size_t sign = rest.starts_with(kEnDash) ? kEnDash.size() : rest.starts_with("-");
    std::size_t last = BehindBlank(dash + sign);
    const int second = sign == 0 ? -1 : ReadDigits(last, 4);
    const std::size_t place = BehindBlank(last);
    const std::string word = WordBehind(place);
    const auto* const noun = std::ranges::find(kNouns, word);
    const bool isShort = word == "гг" && CharacterAt(place + word.size()) == '.';
    if (second < 1000 || place == last || (!isShort && noun == kNouns.end()))
        return std::nullopt;
    const RussianCase wanted =
        isShort ? CaseAt(at) : static_cast<RussianCase>(noun - kNouns.begin());
    const std::string first = RussianPlaceWords(wanted, year) + " – ";
    if (!isShort) {
        said_ = first + RussianPlaceWords(wanted, second);
        return last;
    }
    const auto behind = RussianShort(at, second, place + word.size(), kNouns);
    said_ = first + said_;
    return behind;
}

// "в 1945 г.", "1945 года", "с 1941 по 1945 гг.": Russians count years by their place.
std::optional<std::size_t> SpokenForms::Year(std::size_t at) {
    std::size_t end = at;
    const int year = language_ == "ru" ? ReadDigits(end, 4) : -1;
    if (year < 1000)
        return std::nullopt;
    if (const auto span = YearSpan(at, year, end))
        return span;
    const std::size_t place = BehindBlank(end);
    const std::string word = WordBehind(place);
    if (place > end && word == "г")
        return RussianShort(at, year, place + word.size(), kRussianYears);
    const std::string before = SmallWordBefore(at);
    const bool isSpan =
        place > end && ((before == "с" && word == "по") || (before == "по" && word == "гг"));
    if (place == end || (!isSpan && word != "год" && word != "года" && word != "году"))
        return std::nullopt;
    said_ =
        RussianPlaceWords(word == "года" || before == "с" ? RussianCase::kGenitive
                          : word == "году" && IsAmong(kBeforeDative, before) ? RussianCase::kDative
                          : word == "году" ? RussianCase::kLocative
                                           : RussianCase::kNominative,
                          year);
    return end;
}

// "1. bis 5.", "1 по 5 мая": the days that begin and end a stretch of a month.
std::optional<std::size_t> SpokenForms::DaysOfMonth(std::size_t at) {
    if (forms_->dayRange.empty())
        return std::nullopt;
    std::size_t end = at;
    int days[2] = {};
    bool isBoth = false;
    std::size_t second = at;  // whose words in Russian are those behind "по"
    for (int i = 0; i < 2; ++i) {
        days[i] = ReadDigits(end, 2);
        if (days[i] < 1 || days[i] > 31)
            return std::nullopt;
        if (forms_->hasDottedDays && !text_.substr(end++).starts_with("."))
            return std::nullopt;
        if (i == 1)
            break;
        // "2.–3. Mai", "2./3. Mai"
        const std::string_view rest = text_.substr(end);
        isBoth = rest.starts_with("/");
        if (forms_->hasDottedDays &&
            (isBoth || rest.starts_with(kEnDash) || rest.starts_with("-"))) {
            end += rest.starts_with(kEnDash) ? kEnDash.size() : 1;
            continue;
        }
        const std::size_t word = BehindBlank(end);
        end = word + forms_->dayRange.size();
        if (!text_.substr(word).starts_with(forms_->dayRange) || BehindBlank(end) == end)
            return std::nullopt;
        end = BehindBlank(end);
        second = forms_->hasDottedDays ? at : end;
    }
    const std::string behind = WordBehind(BehindBlank(end));
    const bool goesOn =
        IsMonth(behind) || IsAmong(forms_->orderedNouns, behind) ||
        (!behind.empty() && g_unichar_islower(g_utf8_get_char(behind.c_str())) != FALSE);
    if (!IsMonth(behind) && !forms_->hasDottedDays)
        return std::nullopt;
    const std::string_view both = language_ == "de" ? "und" : "a";
    said_ = DayWords(days[0], at) + " " + std::string(isBoth ? both : forms_->dayRange) + " " +
            DayWords(days[1], second);
    return goesOn ? end : end - 1;  // that stop is the sentence's, too
}

// "17:45 Uhr", of which the engines say the hour twice, "17h45", "ore 17.30", "17.30 hod.".
std::optional<std::size_t> SpokenForms::Clock(std::size_t at) {
    static constexpr struct {
        std::string_view language;
        std::string_view marks;
        std::string_view before;                // words, a blank around each; empty: none is asked
        std::string_view behind;                // the minutes; empty: the same
        std::array<std::string_view, 3> hours;  // of one, of two to four, of many
    } kClocks[] = {{"de", ":.", "", "Uhr", {" Uhr", " Uhr", " Uhr"}},
                   {"fr", "h", "", "", {" heure", " heures", " heures"}},
                   {"it", ".", " ore alle dalle ", "", {" e", " e", " e"}},
                   {"cs", ":.", "", "hod.", {" hodina", " hodiny", " hodin"}}};
    const auto* const clock = std::ranges::find_if(
        kClocks, [this](const auto& each) { return each.language == language_; });
    std::size_t end = at;
    const int hour = ReadDigits(end, 2);
    if (clock == std::end(kClocks) || hour < 0 || hour > 24 || end >= text_.size() ||
        clock->marks.find(text_[end]) == std::string_view::npos)
        return std::nullopt;
    const bool isColon = text_[end] == ':';
    const std::size_t begin = ++end;
    const int minute = ReadDigits(end, 2);
    if (minute < 0 || minute > 59 || end - begin != 2)
        return std::nullopt;
    const OwnedText before(g_utf8_strdown(WordBefore(at).c_str(), -1));
    if (!clock->before.empty() && !IsAmong(clock->before, before.get()))
        return std::nullopt;
    if (!clock->behind.empty()) {
        const std::size_t unit = BehindBlank(end);
        // "9:00 bis 17:30 Uhr"
        const bool isFirst = isColon && language_ == "de" && WordBehind(unit) == "bis";
        if (!isFirst && !text_.substr(unit).starts_with(clock->behind))
            return std::nullopt;
        end = isFirst ? end : unit + clock->behind.size();
    }
    if (!EndsToken(end))
        return std::nullopt;
    said_ = std::to_string(hour);
    if (minute != 0 || language_ != "it")
        said_ += clock->hours[hour < 2 ? 0 : hour < 5 ? 1 : 2];
    said_ += minute == 0 ? "" : " " + std::to_string(minute);
    return end;
}
