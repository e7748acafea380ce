// The window's text as it is spoken: read aloud and saved alike.
#pragma once

#include <cstddef>
#include <string>

#include "app/reading/reading_info.h"
#include "app/text/text_pane.h"

// text: all of the window's, or the part of it from the byte on, with what its document says of it:
// where headings are, and which language it is in.
ReadingText DocumentText(const TextPane& pane, std::string text, std::size_t offset = 0);
