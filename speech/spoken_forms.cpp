#include "speech/spoken_forms.h"

#include <glib.h>

#include <algorithm>
#include <array>

#include "foundation/owned_text.h"
#include "speech/number_words.h"
#include "speech/text_language.h"
#include "speech/utf8_reader.h"

namespace {

constexpr std::size_t kLongestAmount = 30;  // bytes
constexpr std::size_t kLongestWord = 60;
constexpr std::size_t kLongestCharacter = 4;
constexpr std::string_view kMinus = "\xe2\x88\x92";
constexpr std::string_view kHardBlanks[] = {"\xc2\xa0", "\xe2\x80\xaf"};

bool IsDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

bool IsLetterOrDigit(char32_t character) {
    return character != 0 && g_unichar_isalnum(character) != FALSE;
}

std::string Replaced(std::string text, std::string_view what, const std::string& with) {
    if (const std::size_t at = text.find(what); at != std::string::npos)
        text.replace(at, what.size(), with);
    return text;
}

}  // namespace

char32_t SpokenForms::CharacterAt(std::size_t at) const {
    Utf8Reader reader(text_.substr(std::min(at, text_.size()), kLongestCharacter));
    return reader.AtEnd() ? 0 : reader.Next();
}

std::size_t SpokenForms::SizeAt(std::size_t at) const {
    Utf8Reader reader(text_.substr(std::min(at, text_.size()), kLongestCharacter));
    if (!reader.AtEnd())
        reader.Next();
    return reader.At();
}

std::size_t SpokenForms::StartBefore(std::size_t at) const {
    --at;
    while (at > 0 && (static_cast<unsigned char>(text_[at]) & 0xC0) == 0x80)
        --at;
    return at;
}

SpokenForms::SpokenForms(std::string_view text, std::string_view language, SaidByEngine byEngine,
                         SpeakingChoices choices)
    : text_(text),
      language_(LanguageOnly(language)),
      forms_(FormsOfLanguage(language)),
      byEngine_(byEngine),
      choices_(choices),
      isOn_(true) {}

std::optional<SaidDifferently::Stretch> SpokenForms::At(std::size_t at) {
    if (!isOn_ || at >= text_.size())
        return std::nullopt;
    said_.clear();
    if (const auto end = FormAt(at))
        return SaidDifferently::Stretch{*end, said_};
    return std::nullopt;
}

std::optional<std::size_t> SpokenForms::FormAt(std::size_t at) {
    const char byte = text_[at];
    if (byte == ' ' || byte == '\n')
        return std::nullopt;
    if (static_cast<unsigned char>(byte) >= 0x80)
        if (const auto end = Emoji(at))
            return end;
    if (forms_ == nullptr)
        return BeginsToken(at) ? Capitals(at) : std::nullopt;
    if (choices_.saysPunctuation)
        if (const auto end = Punctuation(at))
            return end;
    if (!BeginsToken(at))
        return std::nullopt;
    if (const auto end = Negative(at))
        return end;
    return IsDigit(byte) || byte == '+' ? NumberAt(at) : WordAt(at);
}

// "-5 °C", not "3 -5" and not "a-5".
std::optional<std::size_t> SpokenForms::Negative(std::size_t at) {
    const std::size_t number = at + (text_.substr(at).starts_with(kMinus) ? kMinus.size()
                                     : text_[at] == '-'                   ? 1
                                                                          : 0);
    const bool isBehindGap =
        at == 0 || std::string_view(" \n\t(").find(text_[at - 1]) != std::string_view::npos;
    const bool isBehindNumber = at > 1 && IsDigit(text_[at - 2]) && text_[at - 1] == ' ';
    Amount amount;
    if (number == at || !isBehindGap || isBehindNumber || !ReadAmount(number, amount))
        return std::nullopt;
    const auto end = NumberAt(number);
    const std::string said = end ? said_ : std::string(text_.substr(number, amount.end - number));
    said_ = std::string(forms_->minus) + " " + said;
    return end ? end : amount.end;
}

std::optional<std::size_t> SpokenForms::NumberAt(std::size_t at) {
    for (const auto form : {&SpokenForms::Phone, &SpokenForms::Date, &SpokenForms::DaysOfMonth,
                            &SpokenForms::DottedDay, &SpokenForms::Clock, &SpokenForms::Fraction,
                            &SpokenForms::MixedNumber, &SpokenForms::Score, &SpokenForms::Place,
                            &SpokenForms::Range, &SpokenForms::Abbreviation})
        if (const auto end = (this->*form)(at))
            return end;
    Amount amount;
    if (!ReadAmount(at, amount))
        return std::nullopt;
    const auto money = MoneyBefore(amount);
    const auto scaled = money ? money : ScaledMoney(amount);
    return scaled ? scaled : WithUnit(amount);
}

std::optional<std::size_t> SpokenForms::WordAt(std::size_t at) {
    for (const auto form :
         {&SpokenForms::MoneyBehindSign, &SpokenForms::Abbreviation, &SpokenForms::Fraction,
          &SpokenForms::Place, &SpokenForms::Mail, &SpokenForms::RomanNumeral,
          &SpokenForms::WebAddress, &SpokenForms::Capitals})
        if (const auto end = (this->*form)(at))
            return end;
    return std::nullopt;
}

bool SpokenForms::BeginsToken(std::size_t at) const {
    if (at == 0)
        return true;
    const std::size_t before = StartBefore(at);
    if (IsLetterOrDigit(CharacterAt(before)))
        return false;
    // Not the second half of "1.5", "3/4" and "a.m.".
    const bool isJoint = text_[before] == '.' || text_[before] == ',' || text_[before] == '/' ||
                         text_[before] == '@' || text_[before] == '-';
    return !isJoint || before == 0 || !IsLetterOrDigit(CharacterAt(StartBefore(before)));
}

bool SpokenForms::EndsToken(std::size_t at) const {
    return !IsLetterOrDigit(CharacterAt(at));
}

std::size_t SpokenForms::BehindBlank(std::size_t at) const {
    if (at >= text_.size())
        return at;
    for (const std::string_view blank : kHardBlanks)
        if (text_.substr(at).starts_with(blank))
            return at + blank.size();
    return text_[at] == ' ' ? at + 1 : at;
}

std::string SpokenForms::WordBefore(std::size_t at) const {
    while (at > 0 && (text_[at - 1] == ' ' || text_[at - 1] == '\n'))
        --at;
    const std::size_t end = at;
    while (at > 0 && end - at < kLongestWord && IsLetterOrDigit(CharacterAt(StartBefore(at))))
        at = StartBefore(at);
    return std::string(text_.substr(at, end - at));
}

std::string SpokenForms::WordBehind(std::size_t at) const {
    std::size_t end = at;
    while (end < text_.size() && end - at < kLongestWord && IsLetterOrDigit(CharacterAt(end)))
        end += SizeAt(end);
    return std::string(text_.substr(at, end - at));
}

int SpokenForms::ReadDigits(std::size_t& at, std::size_t most) const {
    int value = 0;
    const std::size_t begin = at;
    for (; at < text_.size() && IsDigit(text_[at]); ++at) {
        if (at - begin == most)
            return -1;
        value = value * 10 + (text_[at] - '0');
    }
    return at == begin ? -1 : value;
}

// "1,234.50" as the language writes it.
bool SpokenForms::ReadAmount(std::size_t at, Amount& amount) const {
    const std::size_t begin = at;
    const auto digitsBehind = [this](std::size_t from) {
        std::size_t count = 0;
        while (from + count < text_.size() && IsDigit(text_[from + count]))
            ++count;
        return count;
    };
    std::size_t count = digitsBehind(at);
    while (count > 0 && at - begin < kLongestAmount) {
        amount.plain += text_.substr(at, count);
        at += count;
        const std::size_t behind = forms_->groupMark == ' ' ? BehindBlank(at)
                                   : at < text_.size() && text_[at] == forms_->groupMark ? at + 1
                                                                                         : at;
        const bool isGroup = behind > at && count <= 3 && digitsBehind(behind) == 3;
        count = isGroup ? 3 : 0;
        at = isGroup ? behind : at;
    }
    if (amount.plain.empty())
        return false;
    if (at < text_.size() && text_[at] == forms_->decimalMark && digitsBehind(at + 1) > 0) {
        count = std::min(digitsBehind(at + 1), kLongestAmount);
        amount.plain += "." + std::string(text_.substr(at + 1, count));
        at += 1 + count;
    }
    amount.end = at;
    return true;
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
    said_ = Replaced(said_, "{y}", std::to_string(year));
    return end;
}

// The day of "3. Mai", "25 декабря", "1 mai"; the month is read as it stands.
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
        !IsLetterOrDigit(CharacterAt(second + 1)) && IsOnThatDay(at)) {
        said_ = DayWords(day, at) + " " +
                std::string(forms_->months[static_cast<std::size_t>(number - 1)]);
        return second + 1;
    }
    // "1° maggio"
    if (day == 1 && language_ == "it" && text_.substr(end).starts_with("°"))
        end += std::string_view("°").size();
    const std::size_t month = BehindBlank(end);
    if (month == end || (!IsMonth(WordBehind(month)) && !IsOrdered(at, WordBehind(month))))
        return std::nullopt;
    said_ = DayWords(day, at);
    return end;
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

// "+1 555 123 4567", "555-123-4567": digit by digit, group by group.
std::optional<std::size_t> SpokenForms::Phone(std::size_t at) {
    constexpr std::size_t kFewestDigits = 7;
    constexpr std::size_t kMostDigits = 15;
    const bool isAbroad = text_[at] == '+';
    std::size_t digits = 0;
    std::size_t groups = 1;
    std::size_t end = at + (isAbroad ? 1 : 0);
    std::string said = isAbroad ? std::string(forms_->plus) + " " : "";
    bool isInGroup = false;
    std::size_t at2 = end;
    for (; at2 < text_.size() && digits <= kMostDigits; ++at2) {
        const char byte = text_[at2];
        if (IsDigit(byte)) {
            said += isInGroup ? " " : "";
            said += byte;
            isInGroup = true;
            ++digits;
            end = at2 + 1;
        } else if (isInGroup && (byte == '-' || (isAbroad && (byte == ' ' || byte == '/')))) {
            said += ", ";
            isInGroup = false;
            ++groups;
        } else if (!(isAbroad && (byte == '(' || byte == ')') && digits > 0)) {
            break;
        }
    }
    const bool isNumber = isAbroad ? digits >= kFewestDigits : groups == 3 && digits == 10;
    if (!isNumber || digits > kMostDigits || !EndsToken(end))
        return std::nullopt;
    said.erase(said.find_last_not_of(", ") + 1);
    said_ = std::move(said);
    return end;
}
