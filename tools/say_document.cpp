#include "tools/say_document.h"

#include <unistd.h>

#include <cerrno>

#include "foundation/text_file.h"
#include "tools/interruption.h"
#include "tools/tool_texts.h"

namespace {

// Why it cannot be read, or empty.
std::string ReadStandardInput(std::string& text) {
    char block[65536];
    for (;;) {
        const ssize_t got = ::read(STDIN_FILENO, block, sizeof block);
        if (IsInterrupted())
            return "stopped";
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return ErrorText(errno);
        if (got == 0)
            return "";
        text.append(block, static_cast<std::size_t>(got));
        if (text.size() > static_cast<std::size_t>(kLargestTextFile))
            return "is too long";
    }
}

}  // namespace

Document ReadSayDocument(const std::string& path) {
    if (!path.empty())
        return LoadDocument(path.c_str(), IsInterrupted);
    std::string bytes;
    if (std::string problem = ReadStandardInput(bytes); !problem.empty())
        return {{}, std::move(problem)};
    return ReadDocument(bytes, IsInterrupted);
}

std::string NameOfText(const std::string& path) {
    return path.empty() ? "standard input" : path;
}
