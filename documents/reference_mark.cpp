#include "documents/reference_mark.h"

#include <glib.h>

#include <algorithm>
#include <string>

#include "documents/small_texts.h"

namespace {

constexpr std::size_t kShortestWord = 3;  // units and variables have at most two letters
constexpr std::size_t kLongestNumber = 3;

// Longer ones that do have powers.
constexpr std::string_view kPowered[] = {"sin",  "cos",  "tan",  "cot", "sec", "csc",
                                         "sinh", "cosh", "tanh", "log", "exp", "mol"};

// Ends of words of length, which have powers behind a number: "12 Meter²", but "the meter²".
constexpr std::string_view kLengths[] = {"meter",  "meters", "metre",  "metres", "metro", "metros",
                                         "metri",  "metrů",  "metry",  "metrów", "mètre", "mètres",
                                         "метр",   "метра",  "метров", "foot",   "feet",  "inch",
                                         "inches", "mile",   "miles",  "yard",   "yards"};

bool IsDigits(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char sign) { return g_ascii_isdigit(sign); });
}

// The letters at the end of a text.
std::string_view LastWord(std::string_view text) {
    const char* const end = text.data() + text.size();
    const char* begin = end;
    while (const char* const letter = g_utf8_find_prev_char(text.data(), begin)) {
        const gunichar code = g_utf8_get_char_validated(letter, end - letter);
        if (code >= 0x110000 || !g_unichar_isalpha(code))
            break;
        begin = letter;
    }
    return text.substr(static_cast<std::size_t>(begin - text.data()));
}

bool IsLength(std::string_view word, std::string_view text) {
    text.remove_suffix(word.size());
    const std::size_t last = text.find_last_not_of(" \n\xc2\xa0");
    std::string small(word);
    std::transform(small.begin(), small.end(), small.begin(), g_ascii_tolower);
    return last != std::string_view::npos && g_ascii_isdigit(text[last]) &&
           std::any_of(std::begin(kLengths), std::end(kLengths),
                       [&small](std::string_view length) { return small.ends_with(length); });
}

bool EndsLikeSentence(std::string_view text) {
    if (text.empty())
        return false;
    for (const std::string_view sign : {"”", "’", "»", "“", "…"})
        if (text.ends_with(sign))
            return true;
    return std::string_view(".,;:!?\"'").find(text.back()) != std::string_view::npos;
}

}  // namespace

bool IsReferenceMark(std::string_view raised, std::string_view before, bool isLink) {
    const std::string_view mark = Trimmed(raised);
    if (mark.empty() || mark.front() == '[')
        return true;
    for (const std::string_view sign : {"*", "†", "‡", "§", "¶"})
        if (mark.starts_with(sign))
            return true;
    const bool isNumbers =
        mark.find_first_not_of("0123456789, -()\xe2\x80\x93") == std::string_view::npos;
    if (isLink && (isNumbers || mark.size() <= 2))
        return true;
    if (!isNumbers || mark.front() == '-' || mark.front() == ',')
        return false;
    if (!IsDigits(mark))
        return mark.find_first_of(",(") != std::string_view::npos;
    const std::string_view word = LastWord(before);
    if (word.empty())
        return EndsLikeSentence(before);
    if ((mark == "2" || mark == "3") && IsLength(word, before))
        return false;
    return mark.size() <= kLongestNumber &&
           g_utf8_strlen(word.data(), static_cast<gssize>(word.size())) >=
               static_cast<glong>(kShortestWord) &&
           std::find(std::begin(kPowered), std::end(kPowered), word) == std::end(kPowered);
}
