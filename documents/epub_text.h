// The text of EPUB books.
#pragma once

#include <string_view>

#include "documents/document.h"
#include "documents/reading_watch.h"
#include "documents/zip_index.h"

// What is missing or damaged is told in the document's remark; the rest is read.
Document ReadEpub(std::string_view bytes, const ZipIndex& index, const ReadingWatch& watch,
                  const DocumentRules& rules);
