#include "documents/markup_listener.h"

#include <algorithm>

#include "documents/small_texts.h"

bool MarkupAttributes::Has(std::string_view name) const {
    return std::any_of(pairs_.begin(), pairs_.end(),
                       [name](const auto& pair) { return pair.first == name; });
}

std::string_view MarkupAttributes::Value(std::string_view name) const {
    for (const auto& [key, value] : pairs_)
        if (key == name)
            return value;
    return {};
}

std::string_view MarkupAttributes::LastValue(std::string_view name) const {
    const auto found = std::find_if(pairs_.rbegin(), pairs_.rend(),
                                    [name](const auto& pair) { return pair.first == name; });
    return found == pairs_.rend() ? std::string_view() : std::string_view(found->second);
}

bool MarkupAttributes::HasWord(std::string_view name, std::string_view word) const {
    std::string_view rest = Value(name);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find_first_of(kWhiteSpace), rest.size());
        if (rest.substr(0, end) == word)
            return true;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return false;
}
