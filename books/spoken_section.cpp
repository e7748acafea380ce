#include "books/spoken_section.h"

#include <cctype>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>

std::string StoreSpoken(const SpokenSection& spoken) {
    char numbers[80];
    std::snprintf(numbers, sizeof numbers, "%d %" PRId64 " %" PRId64, spoken.rate, spoken.begin,
                  spoken.frames);
    std::string stored = numbers;
    for (const LevelStretch& level : spoken.leadLevels)
        stored += " " + std::to_string(level.first) + " " + std::to_string(level.change);
    return stored + "\n" + spoken.levels.Stored();
}

SpokenSection LoadSpoken(std::string_view stored) {
    SpokenSection spoken;
    const std::size_t end = stored.find('\n');
    if (end == std::string_view::npos)
        return spoken;
    const std::string numbers(stored.substr(0, end));
    char* at = nullptr;
    spoken.rate = static_cast<int>(std::strtol(numbers.c_str(), &at, 10));
    spoken.begin = std::strtoll(at, &at, 10);
    spoken.frames = std::strtoll(at, &at, 10);
    if (spoken.rate < 0 || spoken.begin < 0 || spoken.frames < 0)
        return {};
    while (*at == ' ' && std::isdigit(static_cast<unsigned char>(at[1])) != 0) {
        const auto first = static_cast<int>(std::strtol(at, &at, 10));
        spoken.leadLevels.push_back({first, static_cast<int>(std::strtol(at, &at, 10))});
    }
    spoken.levels.Load(stored.substr(end + 1));
    return spoken;
}
