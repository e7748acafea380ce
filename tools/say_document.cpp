#include "tools/say_document.h"

#include <unistd.h>

#include <cerrno>

#include "foundation/files/text_file.h"
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

Document ReadSayDocument(const std::string& path, const DocumentRules& rules) {
    Document document;
    if (!path.empty()) {
        document = LoadDocument(path.c_str(), IsInterrupted, rules);
    } else {
        std::string bytes;
        document.problem = ReadStandardInput(bytes);
        if (document.problem.empty())
            document = ReadDocument(bytes, IsInterrupted, rules);
    }
    if (!document.remark.empty())
        Complain("lectora-say", NameOfText(path) + ": " + document.remark);
    if (document.hasSurroundings)
        Complain("lectora-say", NameOfText(path) + ": " +
                                    std::to_string(document.surroundingWords) +
                                    " words around the article are left out; --whole-page reads "
                                    "them too");
    return document;
}

std::string NameOfText(const std::string& path) {
    return path.empty() ? "standard input" : path;
}
