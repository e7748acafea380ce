// The text in a file of unknown charset.
#pragma once

#include <string>
#include <string_view>

// Valid UTF-8 without NUL bytes (they become blanks), nothing left out that could be shown: byte
// order marks are honoured (UTF-8, UTF-16), UTF-16 without one is known by its NUL bytes, and UTF-8
// keeps its characters when some bytes in it are none: what looks like the rest of a character
// becomes U+FFFD, any other byte its character in Windows-1252. That is also the charset of texts
// in which hardly anything is UTF-8. Linear in the text's length; any thread.
std::string DecodeText(std::string_view bytes);
