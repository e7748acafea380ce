// Pages of a PDF document that hold pictures alone, among others that hold text.
#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>
#include <vector>

#include "documents/document.h"
#include "documents/page_recogniser.h"
#include "documents/pdf_pages.h"
#include "documents/reading_watch.h"

bool PageHoldsWords(const PdfPage& page);

// Of the pages without a word those with a large picture, by their numbers from 1 on, which rise.
std::vector<std::size_t> FindPicturePages(std::string_view bytes, const std::vector<PdfPage>& pages,
                                          const ReadingWatch& watch);

// Joins all pages, with the text that is recognised on those of pictures in its place; the watch
// hears what stands before each. What is not read is told in the remark.
Document JoinWithPictures(std::string_view bytes, std::vector<PdfPage> pages,
                          const std::vector<std::size_t>& pictures, const ReadingWatch& watch,
                          const DocumentRules& rules,
                          std::chrono::seconds patience = kPagePatience);
