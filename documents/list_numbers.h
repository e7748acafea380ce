// How word processors and pages write the number of a list's item.
#pragma once

#include <string>
#include <string_view>

// "decimal", "lowerLetter", "upperLetter", "lowerRoman", "upperRoman" as DOCX names them, "1", "a",
// "A", "i", "I" as others do; what is unknown is decimal.
std::string ListNumber(int number, std::string_view format);
