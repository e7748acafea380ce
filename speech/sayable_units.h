// Leaves nothing in a text that makes a unit of the engine's with nothing to say in it.
#pragma once

#include <string>
#include <string_view>

#include "speech/text_preparation.h"

// text is in the charset already and holds no control byte but tab and newline.
//
// The engine cuts a text into units at blank lines, after sentence punctuation, at runs of dashes
// and after 200 words, and dies on a unit without a letter or digit. So lines without one become
// blank (the pause stays), and a word of punctuation goes where the engine may cut both before and
// after it. The time for a unit grows with the square of its length: unbroken runs are cut into
// pieces and over-long units get a blank line.
PreparedText KeepSayableUnits(std::string_view text, VoiceCharset charset);
