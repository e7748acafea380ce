// Lines of our own files that begin with numbers.
#pragma once

#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>

// Takes the number that the line begins with, and the blank behind it; false: it begins with none.
template <typename Number>
bool TakeLeadingNumber(std::string_view& line, Number& number) {
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
    if (line.starts_with(' '))
        line.remove_prefix(1);
    return error == std::errc();
}
