// Text in pictures: scanned pages and photographs, by the programs tesseract and pdftoppm.
#pragma once

#include <string_view>

#include "documents/document.h"
#include "documents/reading_watch.h"

// Page by page, each with the watch's time anew. What is not installed is told as the problem.
Document ReadPicture(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules);
Document ReadScannedPdf(std::string_view bytes, const ReadingWatch& watch,
                        const DocumentRules& rules);
