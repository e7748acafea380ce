#include "gui/controls/list_view_order.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "foundation/owned_text.h"

namespace {

int CompareTexts(const char* first, const char* second) {
    const OwnedText a(g_utf8_casefold(first, -1));
    const OwnedText b(g_utf8_casefold(second, -1));
    return g_utf8_collate(a.get(), b.get());
}

int CompareNumbers(const char* first, const char* second) {
    const double a = g_ascii_strtod(first, nullptr);
    const double b = g_ascii_strtod(second, nullptr);
    return a < b ? -1 : a > b ? 1 : 0;
}

// Year, month, day, hour, minute, second; what is missing is 0, a text without numbers all of it.
std::array<int, 6> DateParts(const char* text) {
    std::array<int, 6> parts{};
    const char* const end = text + std::strlen(text);
    std::size_t count = 0;
    bool yearFirst = false;
    for (const char* at = text; at != end && count < parts.size();) {
        if (!g_ascii_isdigit(*at)) {
            ++at;
            continue;
        }
        const auto number = std::from_chars(at, end, parts[count]);
        yearFirst = yearFirst || (count == 0 && number.ptr - at >= 4);
        at = number.ptr;
        ++count;
    }
    if (!yearFirst)
        std::swap(parts[0], parts[2]);
    if (parts[0] < 100 && count > 0)
        parts[0] += parts[0] < 70 ? 2000 : 1900;
    return parts;
}

}  // namespace

int CompareListTexts(LListSort order, const char* first, const char* second) {
    switch (order) {
        case LListSort::kNumber:
            return CompareNumbers(first, second);
        case LListSort::kDate: {
            const auto a = DateParts(first);
            const auto b = DateParts(second);
            return a < b ? -1 : a == b ? 0 : 1;
        }
        default:
            return CompareTexts(first, second);
    }
}
