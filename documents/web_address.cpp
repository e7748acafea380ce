#include "documents/web_address.h"

#include <arpa/inet.h>
#include <glib.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "documents/small_texts.h"

namespace {

constexpr std::size_t kLongestAddress = 8000;

struct Network {
    std::uint32_t address;
    int bits;
};
// None of them is reached through the internet.
constexpr Network kLocalNetworks[] = {
    {0x00000000, 8},  {0x0a000000, 8},  {0x64400000, 10}, {0x7f000000, 8},  {0xa9fe0000, 16},
    {0xac100000, 12}, {0xc0000000, 24}, {0xc0000200, 24}, {0xc0a80000, 16}, {0xc6120000, 15},
    {0xc6336400, 24}, {0xcb007100, 24}, {0xe0000000, 4},  {0xf0000000, 4}};

bool IsLocal4(std::uint32_t address) {
    return std::any_of(
        std::begin(kLocalNetworks), std::end(kLocalNetworks), [address](const Network& network) {
            return (address >> (32 - network.bits)) == (network.address >> (32 - network.bits));
        });
}

std::uint32_t Number(const std::uint8_t* bytes) {
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i)
        number = number << 8U | bytes[i];
    return number;
}

// The public ones are 2000::/3; some of these lead on to an IPv4 address that they hold.
bool IsLocal6(const std::array<std::uint8_t, 16>& bytes) {
    const auto begins = [&bytes](std::string_view with) {
        return std::memcmp(bytes.data(), with.data(), with.size()) == 0;
    };
    using std::string_view_literals::operator""sv;
    if (begins("\x00\x64\xff\x9b\0\0\0\0\0\0\0\0"sv))  // translated
        return IsLocal4(Number(bytes.data() + 12));
    if (begins("\x20\x02"sv))  // 6to4
        return IsLocal4(Number(bytes.data() + 2));
    return (bytes[0] & 0xe0U) != 0x20 || begins("\x20\x01\x00\x00"sv) ||
           begins("\x20\x01\x0d\xb8"sv);
}

}  // namespace

bool IsWebAddress(std::string_view text) {
    text = Trimmed(text);
    if (text.size() > kLongestAddress)
        return false;
    for (const std::string_view scheme : {"http://", "https://"})
        if (text.size() > scheme.size() &&
            g_ascii_strncasecmp(text.data(), scheme.data(), scheme.size()) == 0)
            return text[scheme.size()] != '/' &&
                   std::none_of(text.begin(), text.end(), [](char sign) {
                       return static_cast<unsigned char>(sign) <= ' ' || sign == 0x7f;
                   });
    return false;
}

bool IsLocalAddress(const sockaddr& address) {
    if (address.sa_family == AF_INET) {
        sockaddr_in four;
        std::memcpy(&four, &address, sizeof four);
        return IsLocal4(ntohl(four.sin_addr.s_addr));
    }
    if (address.sa_family != AF_INET6)
        return true;
    sockaddr_in6 six;
    std::memcpy(&six, &address, sizeof six);
    std::array<std::uint8_t, 16> bytes{};
    std::memcpy(bytes.data(), &six.sin6_addr, bytes.size());
    if (IN6_IS_ADDR_V4MAPPED(&six.sin6_addr))
        return IsLocal4(Number(bytes.data() + 12));
    return IsLocal6(bytes);
}
