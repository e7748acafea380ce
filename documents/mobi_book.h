// MOBI, AZW3 and Palm books, by way of the EPUB that a program makes of them.
#pragma once

#include <string_view>

#include "documents/document.h"
#include "documents/reading_watch.h"

Document ReadMobi(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules);
