// Turns what a file holds into text that the text box can show.
#pragma once

#include <string>
#include <string_view>

// Valid UTF-8 without NUL bytes, nothing dropped that could be shown: byte order marks are honoured
// (UTF-8, UTF-16), valid UTF-8 passes, and anything else is read as Windows-1252, the usual charset
// of text files that are not UTF-8.
std::string TextForDisplay(std::string_view bytes);
