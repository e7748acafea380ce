// What a document is made of, as its table of contents has it: chapters and the headings in them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "documents/document.h"

struct OutlineEntry {
    std::string title;  // on one line, never empty
    std::size_t begin;  // byte of the text
    int depth;          // below so many others; 0 is the highest
    bool isChapter;

    bool operator==(const OutlineEntry&) const = default;
};

// The book's own chapters, or else the highest headings of which there are at least two.
std::vector<DocumentChapter> ChaptersOf(const Document& document);

// In order. Of more entries than can be looked through the deepest are left out.
std::vector<OutlineEntry> OutlineOf(const Document& document);
