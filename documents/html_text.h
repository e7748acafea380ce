// The text of web pages, and of the chapters of EPUB books.
#pragma once

#include <string>
#include <string_view>

#include "documents/document.h"
#include "documents/reading_watch.h"
#include "documents/text_flow.h"

// In the charset that the page names, else as DecodeText() finds out. Empty, or why it cannot be
// read.
std::string ReadHtml(std::string_view bytes, const ReadingWatch& watch, TextFlow& flow);
