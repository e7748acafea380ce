// The text in a file of unknown charset.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Valid UTF-8 without NUL bytes (they become blanks), nothing left out that could be shown: byte
// order marks are honoured (UTF-8, UTF-16), UTF-16 without one is known by its NUL bytes, and UTF-8
// keeps its characters when some bytes in it are none: what looks like the rest of a character
// becomes U+FFFD, any other byte its character in Windows-1252. A text in which hardly anything is
// UTF-8 is in the charset that its letters speak for, else in Windows-1252. Any thread.
std::string DecodeText(std::string_view bytes);

// The same of HTML: a byte order mark counts first, then what is valid UTF-8, then the charset that
// the page names.
std::string DecodeMarkup(std::string_view bytes);

// Of a charset that is known by its name, as texts in it are written; what is none of its
// characters becomes U+FFFD. None when the computer does not know the charset, or the text is in
// another one.
std::optional<std::string> DecodeCharset(std::string_view bytes, std::string_view charset);

// Whether a byte order mark stands before the text.
bool IsByteOrderMarked(std::string_view bytes);

// Adds the character of a byte, U+FFFD for what is none.
void AppendWindows1252(std::string& text, unsigned char byte);
