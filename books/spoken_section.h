// What is known of a section once it is spoken, for those behind it and for the files that are made
// of it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "books/book_levels.h"

struct SpokenSection {
    int rate = 0;             // 0: it is not spoken
    std::int64_t begin = 0;   // in its file of sound, frames
    std::int64_t frames = 0;  // its own, without its lead
    BookLevels levels;
    std::vector<LevelStretch> leadLevels;  // of the next one's lead

    std::int64_t End() const { return begin + frames; }
};

// As it is kept between runs.
std::string StoreSpoken(const SpokenSection& spoken);
SpokenSection LoadSpoken(std::string_view stored);
