#include "documents/program_output.h"

#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>

#include "documents/problems.h"
#include "documents/small_texts.h"
#include "foundation/files/file_io.h"
#include "foundation/files/unique_fd.h"
#include "foundation/processes/child_process.h"

namespace {

// A GiB of memory, a minute of the processor, and no file over 64 MiB (in blocks of 512 bytes).
constexpr char kBounds[] = "{ ulimit -v 1048576; ulimit -t 60; ulimit -f 131072; } 2>/dev/null; ";
constexpr int kStopTestMilliseconds = 50;

// Bytes in memory as a file of no folder, at its beginning.
UniqueFd FileInMemory(std::string_view bytes) {
    UniqueFd file(::memfd_create("document", MFD_CLOEXEC));
    if (file.IsOpen() &&
        (WriteFully(file.Get(), bytes) != 0 || ::lseek(file.Get(), 0, SEEK_SET) != 0))
        file.Reset();
    return file;
}

ProgramOutcome TakeOutput(int pipe, const ReadingWatch& watch, const OutputTaker& take) {
    std::string block(kReadAtOnce, '\0');
    for (;;) {
        if (watch.IsToEnd())
            return ProgramOutcome::kEnded;
        pollfd waiting{pipe, POLLIN, 0};
        if (::poll(&waiting, 1, kStopTestMilliseconds) <= 0)
            continue;
        const ssize_t got = ::read(pipe, block.data(), block.size());
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return ProgramOutcome::kDone;
        if (!take(std::string_view(block).substr(0, static_cast<std::size_t>(got))))
            return ProgramOutcome::kTooLong;
    }
}

}  // namespace

ProgramOutcome RunProgram(const std::string& command, std::string_view input,
                          const ReadingWatch& watch, const OutputTaker& take) {
    const UniqueFd file = FileInMemory(input);
    LPipePair output = LPipePair::Make();
    if (!file.IsOpen() || !output.IsOpen())
        return ProgramOutcome::kNotStarted;
    LChildStreams streams;
    streams.input = file.Get();
    streams.output = output.writeEnd.Get();
    streams.ownGroup = true;
    streams.tellsStatus = true;
    // The shell ends with this process, and by that program the other one with its shell.
    streams.diesWithStarter = true;
    const std::string with = IsProgramInstalled("setpriv") ? "setpriv --pdeathsig KILL " : "";
    const std::string line = kBounds + ("exec " + with + command + " 2>/dev/null");
    LChildProcess child = LChildProcess::StartShell(line.c_str(), streams);
    if (!child.IsStarted())
        return ProgramOutcome::kNotStarted;
    output.writeEnd.Reset();
    const ProgramOutcome outcome = TakeOutput(output.readEnd.Get(), watch, take);
    if (outcome != ProgramOutcome::kDone)
        ::kill(-child.Pid(), SIGKILL);
    const bool hasFailed = child.Wait() != 0;
    return outcome == ProgramOutcome::kDone && hasFailed ? ProgramOutcome::kFailed : outcome;
}

std::string ProgramProblem(const std::string& program, ProgramOutcome outcome,
                           const ReadingWatch& watch) {
    switch (outcome) {
        case ProgramOutcome::kNotStarted:
            return "The program " + program + " cannot be started.";
        case ProgramOutcome::kEnded:
            return watch.Problem();
        case ProgramOutcome::kTooLong:
            return kTooLongDocument;
        case ProgramOutcome::kDone:
        case ProgramOutcome::kFailed:
            break;
    }
    return {};
}
