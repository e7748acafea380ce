// RTF as the program that reads it understands it.
#pragma once

#include <string>
#include <string_view>

#include "documents/reading_watch.h"

// The program loses the words behind a letter that is written by its number, unless what stands for
// it in old readers is written by its number too; it runs notes into the words before them, shows
// what was deleted or hidden, and of a link says only that it is one. A part when the watch ends
// it.
std::string RtfForProgram(std::string_view rtf, const ReadingWatch& watch,
                          const DocumentRules& rules);
