#include "speech/spoken_forms.h"

#include <glib.h>

#include <algorithm>

#include "speech/text_language.h"
#include "speech/utf8_reader.h"

namespace {

constexpr std::size_t kLongestAmount = 30;  // bytes
constexpr std::size_t kLongestWord = 60;
constexpr std::size_t kLongestCharacter = 4;
constexpr std::string_view kHardBlanks[] = {"\xc2\xa0", "\xe2\x80\xaf"};

bool IsDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

bool IsLetterOrDigit(char32_t character) {
    return character != 0 && g_unichar_isalnum(character) != FALSE;
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

bool SpokenForms::AreDigitsSilent() const {
    return (byEngine_ & kOmitsNumbers) != 0 && CountWords(language_, "1").empty();
}

std::optional<std::size_t> SpokenForms::FormAt(std::size_t at) {
    const char byte = text_[at];
    if (byte == ' ' || byte == '\n')
        return std::nullopt;
    if (static_cast<unsigned char>(byte) >= 0x80)
        if (const auto end = Emoji(at))
            return end;
    if (forms_ == nullptr) {
        if ((byEngine_ & kOmitsNumbers) != 0 && IsDigit(byte))
            return CountedAt(at);
        return BeginsToken(at) ? Capitals(at) : std::nullopt;
    }
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
    const std::size_t number = at + (text_.substr(at).starts_with(kTrueMinus) ? kTrueMinus.size()
                                     : text_[at] == '-'                       ? 1
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
                            &SpokenForms::DottedDay, &SpokenForms::Year, &SpokenForms::Clock,
                            &SpokenForms::Fraction, &SpokenForms::MixedNumber, &SpokenForms::Score,
                            &SpokenForms::Place, &SpokenForms::Range, &SpokenForms::Abbreviation})
        if (const auto end = (this->*form)(at))
            return end;
    Amount amount;
    if (!ReadAmount(at, amount))
        return std::nullopt;
    const auto money = MoneyBefore(amount);
    const auto scaled = money ? money : Scaled(amount);
    return scaled ? scaled : WithUnit(amount);
}

// Any digits, wherever they stand; those that count nothing one by one.
std::optional<std::size_t> SpokenForms::CountedAt(std::size_t at) {
    constexpr std::size_t kMostAtOnce = 40;
    constexpr std::size_t kMostCounted = 12;
    const auto is = [this](std::size_t place, char mark) {
        return place < text_.size() && text_[place] == mark;
    };
    const auto digitsAt = [this](std::size_t place) {
        std::size_t count = 0;
        while (place + count < text_.size() && count < kMostAtOnce && IsDigit(text_[place + count]))
            ++count;
        return count;
    };
    std::size_t end = at + digitsAt(at);
    std::string number(text_.substr(at, end - at));
    if (number.size() <= 3)
        for (; is(end, ',') && digitsAt(end + 1) == 3 && number.size() < kMostCounted; end += 4)
            number += text_.substr(end + 1, 3);
    const bool isCounted =
        number.size() == 1 || (number.size() <= kMostCounted && number[0] != '0');
    const std::size_t fraction = is(end, '.') ? digitsAt(end + 1) : 0;
    // "25.12.2026" is none.
    const bool isDate = (at > 1 && text_[at - 1] == '.' && IsDigit(text_[at - 2])) ||
                        (is(end + 1 + fraction, '.') && digitsAt(end + 2 + fraction) > 0);
    if (isCounted && fraction > 0 && fraction <= kMostCounted && !isDate) {
        number += text_.substr(end, 1 + fraction);
        end += 1 + fraction;
    }
    std::string words;
    if (isCounted)
        words = CountWords(language_, number);
    else
        for (const char digit : number)
            words += (words.empty() ? "" : " ") + CountWords(language_, std::string(1, digit));
    if (words.empty())
        return std::nullopt;
    const bool isBehindLatin = at > 0 && g_ascii_isalpha(text_[at - 1]);
    said_ = (isBehindLatin ? " " : "") + words + (EndsToken(end) ? "" : " ");
    return end;
}

std::optional<std::size_t> SpokenForms::WordAt(std::size_t at) {
    for (const auto form :
         {&SpokenForms::Mail, &SpokenForms::MoneyBehindSign, &SpokenForms::Abbreviation,
          &SpokenForms::Fraction, &SpokenForms::Place, &SpokenForms::RomanNumeral,
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
