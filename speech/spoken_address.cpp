#include "speech/spoken_address.h"

#include <glib.h>
#include <strings.h>

#include <algorithm>

namespace {

constexpr std::size_t kLongestAddress = 4000;

bool BeginsWith(std::string_view text, std::string_view beginning) {
    return text.size() > beginning.size() &&
           ::strncasecmp(text.data(), beginning.data(), beginning.size()) == 0;
}

bool IsOfHost(char character) {
    return g_ascii_isalnum(character) || character == '.' || character == '-' ||
           static_cast<unsigned char>(character) >= 0x80;
}

// What stands behind an address belongs to the sentence, and so does a bracket that was not opened
// in it.
std::string_view WithoutPunctuation(std::string_view address) {
    for (;;) {
        const char last = address.empty() ? ' ' : address.back();
        const bool isBracket =
            last == ')' && std::ranges::count(address, '(') < std::ranges::count(address, ')');
        if (!isBracket && std::string_view(".,;:!?'\"]}*_").find(last) == std::string_view::npos)
            return address;
        address.remove_suffix(1);
    }
}

}  // namespace

std::optional<SpokenAddress> AddressAt(std::string_view text, std::size_t at) {
    std::string_view rest = text.substr(at);
    constexpr std::string_view kWww = "www.";
    std::size_t scheme = 0;
    for (const std::string_view known : {"https://", "http://", "ftp://"})
        if (BeginsWith(rest, known))
            scheme = known.size();
    const bool isInWord = at > 0 && g_ascii_isalnum(text[at - 1]);
    if (isInWord || (scheme == 0 && !BeginsWith(rest, kWww)))
        return std::nullopt;
    rest = rest.substr(0, std::min(rest.find_first_of(" \t\r\n\f<>\"|\\^`"), kLongestAddress));
    rest = WithoutPunctuation(rest);
    std::string_view host = rest.substr(std::min(scheme, rest.size()));
    host = host.substr(0, host.find_first_of("/?#"));
    if (const std::size_t user = host.rfind('@'); user != std::string_view::npos)
        host.remove_prefix(user + 1);
    if (BeginsWith(host, kWww))
        host.remove_prefix(kWww.size());
    const auto* const end = std::find_if_not(host.begin(), host.end(), IsOfHost);
    host = host.substr(0, static_cast<std::size_t>(end - host.begin()));
    // "www." is also how other things begin.
    if (host.find('.') == std::string_view::npos && scheme == 0)
        return std::nullopt;
    if (host.empty())
        return std::nullopt;
    return SpokenAddress{at + rest.size(), host};
}
