// Words of a shell command.
#pragma once

#include <string>
#include <string_view>

// The word as the shell reads it back, whatever is in it.
inline std::string ShellQuoted(std::string_view word) {
    std::string quoted = "'";
    for (const char character : word)
        quoted += character == '\'' ? "'\\''" : std::string(1, character);
    return quoted + "'";
}
