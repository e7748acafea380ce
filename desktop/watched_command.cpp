#include "desktop/watched_command.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "foundation/files/file_io.h"

namespace {

constexpr std::int64_t kEndOfOutput = 1000;  // bytes that hold the last line

// The last line that is not empty and has ended.
std::string LastLineOf(int file) {
    const std::int64_t size = FileSize(file);
    const std::int64_t start = std::max<std::int64_t>(0, size - kEndOfOutput);
    std::string text(static_cast<std::size_t>(size - start), '\0');
    text.resize(ReadFullyAt(file, text.data(), text.size(), start));
    std::string_view lines = text;
    lines = lines.substr(0, lines.find_last_of("\r\n") + 1);
    while (!lines.empty() && (lines.back() == '\r' || lines.back() == '\n'))
        lines.remove_suffix(1);
    return std::string(lines.substr(lines.find_last_of("\r\n") + 1));
}

}  // namespace

LWatchedCommand::~LWatchedCommand() {
    child_.Release();
}

bool LWatchedCommand::Start(const std::string& command) {
    char path[] = "/tmp/lectora-said-XXXXXX";
    output_.Reset(::mkostemp(path, O_CLOEXEC));
    if (!output_.IsOpen())
        return false;
    ::unlink(path);
    LChildStreams streams;
    streams.emptyInput = true;
    streams.output = output_.Get();
    streams.errors = output_.Get();
    streams.tellsStatus = true;
    child_ = LChildProcess::StartShell(command.c_str(), streams);
    return child_.IsStarted();
}

int LWatchedCommand::ExitStatus() const {
    return WIFEXITED(status_) ? WEXITSTATUS(status_) : -1;
}

bool LWatchedCommand::HasEnded() {
    lastLine_ = LastLineOf(output_.Get());
    if (!child_.IsStarted())
        return true;
    if (!child_.HasEnded())
        return false;
    status_ = child_.Wait();
    lastLine_ = LastLineOf(output_.Get());
    return true;
}

LProcessResult Process(LProgress& progress, LWatchedCommand& command) {
    constexpr unsigned int kBetweenLooks = 100;  // milliseconds
    std::string said;
    while (!command.HasEnded()) {
        if (said != command.LastLine())
            progress.SetSecondLabel((said = command.LastLine()).c_str());
        if (progress.ProcessWait(kBetweenLooks) == kProcessStopped)
            return kProcessStopped;
    }
    return command.HasSucceeded() ? kProcessDone : kProcessFailed;
}
