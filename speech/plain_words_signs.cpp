// Signs in words, for English voices.
#include <glib.h>

#include <algorithm>
#include <array>

#include "speech/character_tables.h"
#include "speech/plain_words.h"

namespace {

constexpr std::size_t kMaxAmount = 40;
constexpr std::size_t kMaxExponent = 6;
// A longer word with a raised number behind it is a word with a footnote, no unit or variable.
constexpr std::size_t kLongestUnit = 3;
constexpr std::string_view kNoBreakSpace = "\xc2\xa0";
constexpr char32_t kDegreeSign = 0x00B0;
constexpr char32_t kRaisedMinus = 0x207B;

bool IsGreek(char32_t character) {
    return character >= 0x0370 && character < 0x0400;
}

bool IsOhm(char32_t character) {
    return character == 0x03A9 || character == 0x2126;
}

struct Scale {
    std::string_view written;
    std::string_view spoken;
};
constexpr Scale kScales[] = {
    {" thousand", " thousand"}, {" million", " million"}, {" billion", " billion"},
    {" trillion", " trillion"}, {"k", " thousand"},       {"K", " thousand"},
    {"mn", " million"},         {"m", " million"},        {"M", " million"},
    {"bn", " billion"},         {"b", " billion"},        {"B", " billion"},
    {"tn", " trillion"},        {"trn", " trillion"},
};

std::size_t NumberLength(std::string_view text) {
    std::size_t end = 0;
    while (
        end < std::min(text.size(), kMaxAmount) &&
        (g_ascii_isdigit(text[end]) || (end > 0 && (text[end] == '.' || text[end] == ',') &&
                                        end + 1 < text.size() && g_ascii_isdigit(text[end + 1]))))
        ++end;
    return end;
}

}  // namespace

// False when the character is no sign.
bool PlainWords::AddSign(char32_t sign) {
    if (const Currency* currency = FindCurrency(sign)) {
        AddCurrency(*currency);
    } else if (SuperscriptDigit(sign) != '\0' || sign == kRaisedMinus) {
        AddExponent(sign);
    } else if (IsOhm(sign) && StandsBehindNumber()) {
        AddWords(LastWord() == "1" ? "ohm" : "ohms");
    } else if (const char* words = SpokenSign(sign)) {
        if (g_unichar_type(sign) == G_UNICODE_OTHER_NUMBER && LastWordIsNumber())
            AddWords("and");
        AddWords(words);
        if (sign == kDegreeSign)
            AddDegreeScale();
    } else if (const char* name = GreekLetterName(sign)) {
        // Said by name as a symbol, dropped as part of a Greek word.
        if (IsGreek(previous_) || IsGreek(reader_.Peek()))
            Drop(sign);
        else
            AddWords(name);
    } else {
        return false;
    }
    return true;
}

// For voices of other languages than English: what neither their charset nor a plain form holds.
bool PlainWords::AddForeignSign(char32_t sign) {
    const ForeignSign* const words = FindForeignSign(language_, sign);
    if (words == nullptr)
        return false;
    const std::string one = InCharset(words->one);
    if (words->many == nullptr)
        AddWords(one);
    else
        AddCurrency({one.c_str(), InCharset(words->many).c_str()});
    return true;
}

std::string PlainWords::InCharset(std::string_view utf8) const {
    std::string bytes;
    for (Utf8Reader reader(utf8); !reader.AtEnd();)
        bytes += static_cast<char>(ByteInCharset(reader.Next(), charset_));
    return bytes;
}

void PlainWords::AddDegreeScale() {
    const std::string_view rest = reader_.Rest();
    if (rest.empty() || (rest[0] != 'C' && rest[0] != 'F') ||
        (rest.size() > 1 && g_ascii_isalnum(rest[1])))
        return;
    AddWords(rest[0] == 'C' ? "Celsius" : "Fahrenheit");
    reader_.Skip(1);
}

// The engine is silent on a "-" between numbers.
void PlainWords::AddMinus() {
    std::string_view ahead = reader_.Rest().substr(0, kMaxAmount);
    ahead.remove_prefix(std::min(ahead.find_first_not_of(' '), ahead.size()));
    const std::string_view last = LastWord();
    const bool behindTerm = last.size() == 1 || LastWordIsNumber() || last.ends_with(')');
    if (behindTerm || (!ahead.empty() && g_ascii_isdigit(ahead[0])))
        AddWords("minus");
    else
        Put('-');
}

// The unit is said behind the amount: "5 euros", "2.50 pounds", "3 million yen".
void PlainWords::AddCurrency(const Currency& currency) {
    if (AddAmountAhead(currency, 0))
        return;
    if (LastWordIsNumber()) {
        AddWords(LastWord() == "1" ? currency.one : currency.many);
        return;
    }
    const std::string_view rest = reader_.Rest();
    const std::size_t blank = rest.starts_with(' ')             ? 1
                              : rest.starts_with(kNoBreakSpace) ? kNoBreakSpace.size()
                                                                : 0;
    if (blank == 0 || !AddAmountAhead(currency, blank))
        AddWords(currency.one);
}

// Digits with inner points and commas, and a scale behind them; false when there are none.
bool PlainWords::AddAmountAhead(const Currency& currency, std::size_t blank) {
    const std::string_view rest = reader_.Rest().substr(blank);
    std::size_t length = NumberLength(rest);
    if (length == 0)
        return false;
    std::string amount(rest.substr(0, length));
    for (const Scale& scale : kScales) {
        if (charset_ != VoiceCharset::kAscii)
            break;  // they are English
        const std::size_t end = length + scale.written.size();
        if (rest.substr(length, scale.written.size()) != scale.written ||
            (end < rest.size() && g_ascii_isalnum(rest[end])))
            continue;
        amount += scale.spoken;
        length = end;
        break;
    }
    AddWords(amount);
    reader_.Skip(blank + length);
    AddWords(amount == "1" ? currency.one : currency.many);
    return true;
}

// A raised number: a power behind a number, a unit or a variable, else that of a footnote, which
// goes.
void PlainWords::AddExponent(char32_t first) {
    const bool isNegative = first == kRaisedMinus;
    std::string digits;
    if (!isNegative)
        digits = SuperscriptDigit(first);
    while (digits.size() < kMaxExponent && SuperscriptDigit(reader_.Peek()) != '\0')
        digits += SuperscriptDigit(reader_.Next());
    if (digits.empty() || EndsInBlank() || out_.empty())
        return;
    const std::string_view word = LastWord();
    const auto letters = static_cast<std::size_t>(
        std::find_if_not(word.rbegin(), word.rend(), [](char c) { return g_ascii_isalpha(c); }) -
        word.rbegin());
    const bool isNumber = g_ascii_isdigit(word.back());
    const bool isTerm = isNumber || word.back() == ')' || (letters > 0 && letters <= kLongestUnit);
    if (!isTerm)
        return;
    if (!isNegative && (digits == "2" || digits == "3")) {
        AddWords(digits == "2" ? "squared" : "cubed");
    } else if (isNegative || isNumber || letters == 1) {
        AddWords(isNegative ? "to the minus" : "to the");
        AddWords(digits);
    }
}

// "5 Ω", "10 kΩ".
bool PlainWords::StandsBehindNumber() const {
    const std::string_view last = LastWord();
    if (last.empty())
        return false;
    const bool isPrefix =
        last.size() == 1 && std::string_view("kKMGm").find(last[0]) != std::string_view::npos;
    return g_ascii_isdigit(last.back()) ||
           (!EndsInBlank() && (isPrefix || g_ascii_isdigit(last.front())));
}
