// Writing to the engine's interactive program.
#pragma once

#include <string_view>

// Writes all of the text, or as much as an engine takes that has gone: this raises no signal.
void WriteToEngine(int fd, std::string_view text);
