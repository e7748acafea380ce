#include "documents/list_numbers.h"

#include <glib.h>

#include <algorithm>

namespace {

constexpr int kMostRoman = 399;
constexpr int kLetters = 26;
constexpr int kMostLetters = 10 * kLetters;

std::string Roman(int number) {
    constexpr std::pair<int, const char*> kParts[] = {{100, "c"}, {90, "xc"}, {50, "l"},
                                                      {40, "xl"}, {10, "x"},  {9, "ix"},
                                                      {5, "v"},   {4, "iv"},  {1, "i"}};
    std::string roman;
    for (const auto& [value, letters] : kParts)
        for (; number >= value; number -= value)
            roman += letters;
    return roman;
}

}  // namespace

std::string ListNumber(int number, std::string_view format) {
    const bool isRoman = format == "i" || format == "I" || format.ends_with("Roman");
    const bool isLetter = format == "a" || format == "A" || format.ends_with("Letter");
    std::string text;
    if (isRoman && number > 0 && number <= kMostRoman)
        text = Roman(number);
    else if (isLetter && number > 0 && number <= kMostLetters)
        text.assign(static_cast<std::size_t>((number - 1) / kLetters + 1),
                    static_cast<char>('a' + (number - 1) % kLetters));
    else
        return std::to_string(number);
    if (format == "I" || format == "A" || format.starts_with("upper"))
        std::transform(text.begin(), text.end(), text.begin(), g_ascii_toupper);
    return text;
}
