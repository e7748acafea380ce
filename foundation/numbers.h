// Decimal numbers in stored texts.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdlib>

// The leading number of the text, 0 when it begins with none; clamped to what an int holds.
inline int DecimalFromText(const char* text) {
    return static_cast<int>(std::clamp<long>(std::strtol(text, nullptr, 10), INT_MIN, INT_MAX));
}
