// The text of web pages, and of the chapters of EPUB books.
#pragma once

#include <string>
#include <string_view>

#include "documents/document.h"
#include "documents/reading_watch.h"
#include "documents/text_flow.h"

// What a page says of itself.
struct PageFacts {
    std::string title;
    std::string author;
};

// Adds the text to the flow. Empty, or why it cannot be read.
std::string ReadHtml(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules,
                     TextFlow& flow, PageFacts& facts);

// A web page by itself: its article without what surrounds it, unless the rules say otherwise.
Document ReadPage(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules);
