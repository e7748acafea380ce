// Small numbers above the line: powers, or marks that point to a note?
#pragma once

#include <string_view>

// raised: the text above the line; before: the text that it follows.
bool IsReferenceMark(std::string_view raised, std::string_view before, bool isLink);
