// The text of PDF documents, by the program pdftotext.
#pragma once

#include <string_view>

#include "documents/document.h"
#include "documents/reading_watch.h"

Document ReadPdf(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules);
