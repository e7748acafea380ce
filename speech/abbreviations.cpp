#include "speech/abbreviations.h"

#include <glib.h>
#include <unicode/ures.h>
#include <unicode/utypes.h>

#include <algorithm>
#include <memory>

namespace {

using Resource = std::unique_ptr<UResourceBundle, decltype(&ures_close)>;

}  // namespace

Abbreviations::Abbreviations(const std::string& language) {
    UErrorCode error = U_ZERO_ERROR;
    const Resource rules(ures_openDirect(U_ICUDATA_NAME "-brkitr", language.c_str(), &error),
                         ures_close);
    const Resource kinds(ures_getByKey(rules.get(), "exceptions", nullptr, &error), ures_close);
    const Resource list(ures_getByKey(kinds.get(), "SentenceBreak", nullptr, &error), ures_close);
    const int count = U_SUCCESS(error) != 0 ? ures_getSize(list.get()) : 0;
    for (int i = 0; i < count; ++i) {
        char written[64];
        std::int32_t size = sizeof written;
        ures_getUTF8StringByIndex(list.get(), i, written, &size, 1, &error);
        if (U_SUCCESS(error) != 0)
            sorted_.emplace_back(written, static_cast<std::size_t>(size));
        error = U_ZERO_ERROR;
    }
    std::ranges::sort(sorted_);
    for (const std::string& one : sorted_)
        longest_ = std::max(longest_, one.size());
}

bool Abbreviations::EndAt(std::string_view text, std::size_t end) const {
    std::string_view before = text.substr(0, end);
    before = before.substr(0, before.find_last_not_of(" \t\r\n") + 1);
    const char* const first = before.data();
    const char* const least = first + (before.size() - std::min(longest_, before.size()));
    for (const char* at = first + before.size(); at > least;) {
        at = g_utf8_find_prev_char(first, at);
        if (at == nullptr || at < least)
            break;
        const char* const previous = g_utf8_find_prev_char(first, at);
        const bool isWithinWord =
            previous != nullptr && g_unichar_isalnum(g_utf8_get_char(previous)) != 0;
        const auto size = static_cast<std::size_t>(first + before.size() - at);
        if (!isWithinWord && std::ranges::binary_search(sorted_, std::string_view(at, size)))
            return true;
    }
    return false;
}
