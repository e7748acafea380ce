// Documents that a program of their own turns into a page or into text: RTF, DjVu, Markdown.
#pragma once

#include <string_view>

#include "documents/document.h"
#include "documents/reading_watch.h"

Document ReadRtf(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules);
Document ReadDjvu(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules);
Document ReadMarkdown(std::string_view bytes, const ReadingWatch& watch,
                      const DocumentRules& rules);
