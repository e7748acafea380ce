#include "speech/shell_word.h"

std::string ShellWord(std::string_view word) {
    constexpr std::string_view kPlain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_./-";
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string_view::npos)
        return std::string(word);
    std::string quoted = "'";
    for (const char character : word) {
        if (character == '\'')
            quoted += "'\\''";
        else
            quoted += character;
    }
    return quoted + "'";
}
