// Documents that are ZIP archives: EPUB books, OpenDocument and Office Open XML files.
#pragma once

#include <string_view>

#include "documents/document.h"
#include "documents/reading_watch.h"

Document ReadZipDocument(std::string_view bytes, const ReadingWatch& watch,
                         const DocumentRules& rules);

// An OpenDocument text as a single XML file.
Document ReadFlatOdt(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules);
