// Makes any bytes fit to be shown: GTK drops the whole text when one byte of it is not valid UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "foundation/files/text_buffer.h"
#include "foundation/whole_characters.h"

// Valid UTF-8 without NUL is returned unchanged. Otherwise bytes that are not UTF-8 are taken as
// ISO-8859-1 characters and NUL bytes become U+FFFD, so that nothing vanishes silently.
std::string DisplayText(std::string_view text);

// Cut to the buffer, which holds whole characters only.
template <std::size_t N>
void CopyShownText(char (&out)[N], std::string_view text) {
    CopyText(out, WholeCharacters(text, N - 1));
}
