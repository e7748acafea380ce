#include "documents/pdf_text.h"

#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>

#include "documents/problems.h"
#include "documents/small_texts.h"
#include "documents/text_charset.h"
#include "foundation/child_process.h"
#include "foundation/file_io.h"
#include "foundation/unique_fd.h"

namespace {

constexpr rlim_t kMaxMemory = 1U << 30;
constexpr rlim_t kMaxSeconds = 60;  // of the processor
constexpr int kStopTestMilliseconds = 50;

// Bytes in memory as a file of no folder, at its beginning.
UniqueFd FileInMemory(std::string_view bytes) {
    UniqueFd file(::memfd_create("document", MFD_CLOEXEC));
    if (file.IsOpen() &&
        (WriteFully(file.Get(), bytes) != 0 || ::lseek(file.Get(), 0, SEEK_SET) != 0))
        file.Reset();
    return file;
}

void Bound(pid_t child) {
    const rlimit memory{kMaxMemory, kMaxMemory};
    const rlimit seconds{kMaxSeconds, kMaxSeconds};
    ::prlimit(child, RLIMIT_AS, &memory, nullptr);
    ::prlimit(child, RLIMIT_CPU, &seconds, nullptr);
}

enum class Outcome { kRead, kEnded, kTooLong };

Outcome ReadOutput(int pipe, const ReadingWatch& watch, std::string& text) {
    std::string block(kReadAtOnce, '\0');
    for (;;) {
        if (watch.IsToEnd())
            return Outcome::kEnded;
        pollfd waiting{pipe, POLLIN, 0};
        if (::poll(&waiting, 1, kStopTestMilliseconds) <= 0)
            continue;
        const ssize_t got = ::read(pipe, block.data(), block.size());
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return Outcome::kRead;
        text.append(block, 0, static_cast<std::size_t>(got));
        if (text.size() > kLargestDocumentText)
            return Outcome::kTooLong;
    }
}

bool IsBlank(std::string_view text) {
    return text.find_first_not_of(kWhiteSpace) == std::string_view::npos;
}

Document WithoutText(std::string_view bytes) {
    if (bytes.find("/Encrypt") != std::string_view::npos)
        return DocumentProblem("The PDF document is protected by a password.");
    if (bytes.find("%%EOF") == std::string_view::npos)
        return DocumentProblem("The PDF document is damaged or not complete.");
    return DocumentProblem("The PDF document holds no text, only pictures of it, or is damaged.");
}

}  // namespace

Document ReadPdf(std::string_view bytes, const ReadingWatch& watch, const DocumentRules&) {
    if (!IsProgramInstalled("pdftotext"))
        return DocumentProblem(
            "PDF documents need the program pdftotext: install the package poppler-utils.");
    const UniqueFd input = FileInMemory(bytes);
    LPipePair output = LPipePair::Make();
    if (!input.IsOpen() || !output.IsOpen())
        return DocumentProblem("There is not enough memory to read the PDF document.");
    LChildStreams streams;
    streams.input = input.Get();
    streams.output = output.writeEnd.Get();
    streams.ownGroup = true;
    LChildProcess child = LChildProcess::StartShell(
        "exec pdftotext -q -enc UTF-8 -eol unix - - 2>/dev/null", streams);
    if (!child.IsStarted())
        return DocumentProblem("The program pdftotext cannot be started.");
    Bound(child.Pid());
    output.writeEnd.Reset();
    std::string text;
    const Outcome outcome = ReadOutput(output.readEnd.Get(), watch, text);
    if (outcome != Outcome::kRead)
        ::kill(-child.Pid(), SIGKILL);
    child.Wait();
    if (outcome == Outcome::kEnded)
        return DocumentProblem(watch.Problem());
    if (outcome == Outcome::kTooLong)
        return DocumentProblem(kTooLongDocument);
    if (IsBlank(text))
        return WithoutText(bytes);
    Document document;
    document.text = JoinPages(DecodeText(text));
    return document;
}
