// An entry of the pronunciation list that is a pattern.
#pragma once

#include <glib.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "speech/pronunciation.h"

// Any thread.
class PronunciationPattern {
public:
    explicit PronunciationPattern(const Pronunciation& entry);

    // Empty, or why it is no pattern, in a sentence for the user.
    const std::string& Problem() const { return problem_; }

    struct Match {
        std::size_t begin;
        std::size_t end;
        std::string said;
    };
    // Adds what the pattern finds in the sentence (valid UTF-8), in order. False: it was given up,
    // because it would have taken too long.
    bool FindIn(std::string_view sentence, std::vector<Match>& matches) const;

private:
    std::shared_ptr<GRegex> pattern_;
    std::string said_;
    std::string problem_;
};
