#include "tools/tool_texts.h"

#include <charconv>
#include <cstdio>
#include <cstring>

#include "tools/terminal_progress.h"

void Complain(const char* program, const std::string& message) {
    LTerminalProgress::ClearLine();
    std::fprintf(stderr, "%s: %s\n", program, message.c_str());
}

int UsageError(const char* program, const std::string& message) {
    Complain(program, message);
    std::fprintf(stderr, "Try '%s --help'.\n", program);
    return kExitUsage;
}

int ShowVersion(const char* program) {
    std::printf("%s %s\n", program, LECTORA_VERSION);
    return kExitDone;
}

bool ParseNumber(const char* text, int least, int most, int& number) {
    int value = 0;
    const char* end = text + std::strlen(text);
    const auto [at, error] = std::from_chars(text, end, value);
    if (error != std::errc() || at != end || value < least || value > most)
        return false;
    number = value;
    return true;
}

std::string ErrorText(int error) {
    return std::strerror(error);
}
