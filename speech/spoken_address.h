// Addresses of the web in a text, of which a listener wants to hear whose they are.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

struct SpokenAddress {
    std::size_t end;
    std::string_view host;  // "example.org"; within the text
};

// One that begins at that byte: "https://www.example.org/a?b" or "www.example.org/a".
std::optional<SpokenAddress> AddressAt(std::string_view text, std::size_t at);
