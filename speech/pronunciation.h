// What is said differently: an entry of the pronunciation list (pronunciation_file.h).
#pragma once

#include <cstddef>
#include <string>

struct Pronunciation {
    std::string text;
    std::string said;
    std::string where;       // language tag or voice key; empty: everywhere
    bool isPattern = false;  // text is a regular expression, said may refer to it ("\1")
    bool heedsCase = false;
    std::string above = {};  // in its file, which keeps it: lines that say nothing, with their ends

    bool operator==(const Pronunciation&) const = default;
};

// Longer texts stand in no list.
constexpr std::size_t kMostPronunciationBytes = 400;
