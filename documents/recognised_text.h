// Text in pictures: scanned pages and photographs, by the programs tesseract and pdftoppm.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "documents/document.h"
#include "documents/page_recogniser.h"
#include "documents/reading_watch.h"

// Pages by their numbers, which rise: "2-4, 9 and 31 more".
std::string RangesOf(const std::vector<std::size_t>& pages);

// Page by page, each with the watch's time anew. What is not installed is told as the problem.
Document ReadPicture(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules);
// pages: how many there are at least. Those that take too long or fail are told as missing.
Document ReadScannedPdf(std::string_view bytes, std::size_t pages, const ReadingWatch& watch,
                        const DocumentRules& rules, std::chrono::seconds patience = kPagePatience);
