// The number that a text begins with.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <limits>

// 0 when the text begins with none; beyond the range of an int, its end.
inline int DecimalNumber(const char* text) {
    const long number = std::strtol(text, nullptr, 10);
    return static_cast<int>(
        std::clamp<long>(number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}
