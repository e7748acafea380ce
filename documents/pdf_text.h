// The text of PDF documents, by the program pdftotext, which runs as a child with bounded memory
// and time.
#pragma once

#include <string>
#include <string_view>

#include "documents/document.h"
#include "documents/reading_watch.h"

Document ReadPdf(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules);

// Makes running text of printed pages (lines; a form feed behind each page): page numbers go, words
// divided at a line's end are joined, unless the text has them with their hyphen elsewhere, and a
// sentence that goes on behind a page's end has no pause there.
std::string JoinPages(std::string_view pages);
