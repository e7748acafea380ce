// What is known of a text beside its letters.
#pragma once

#include <cstddef>
#include <string>

#include "app/text/structure_text.h"

struct TextFacts {
    KeptStructure structure = {};
    std::string file = {};   // that it came from; empty: from none
    bool isPrivate = false;  // another program's, and unedited
    bool isArticle = false;  // what surrounds it can be brought back
    unsigned int generation = 0;

    // About what it takes in memory.
    std::size_t Bytes() const {
        return structure.outline.size() * 128 + structure.pages.size() * sizeof(std::size_t) +
               structure.languages.size() * sizeof(DocumentLanguage);
    }
};
