// Books in a single XML file (FB2).
#pragma once

#include <string_view>

#include "documents/document.h"
#include "documents/reading_watch.h"

Document ReadFictionBook(std::string_view bytes, const ReadingWatch& watch,
                         const DocumentRules& rules);
