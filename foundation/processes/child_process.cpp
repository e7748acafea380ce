#include "foundation/processes/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

constexpr int kFirstPrivateFd = 3;
constexpr int kToldFd = 3;  // of a shell that tells its command's status

void SetDefaultSignals() {
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    for (int number = 1; number < NSIG; ++number)
        ::sigaction(number, &action, nullptr);
}

// Everything from the first private descriptor on is gone once the program runs, also what
// libraries opened without close-on-exec (display connections, sound cards).
void CloseOnExecFromFirstPrivate() {
    if (::close_range(kFirstPrivateFd, ~0U, CLOSE_RANGE_CLOEXEC) == 0)
        return;
    for (int fd = kFirstPrivateFd; fd < 1024; ++fd)  // a kernel before 5.11
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
}

bool ConnectStandardStreams(const LChildStreams& streams) {
    const int input = streams.emptyInput ? ::open("/dev/null", O_RDONLY) : streams.input;
    if (streams.emptyInput && input < 0)
        return false;
    const int output = streams.noOutput ? ::open("/dev/null", O_WRONLY) : streams.output;
    if (streams.noOutput && output < 0)
        return false;
    return (input <= 0 || ::dup2(input, 0) == 0) && (output < 0 || ::dup2(output, 1) == 1) &&
           (streams.errors < 0 || ::dup2(streams.errors, 2) == 2);
}

// Between fork and exec: async-signal-safe calls only. The program gets told, unless it is -1, as
// its kToldFd. errno goes to the descriptor when the
// program cannot be run.
[[noreturn]] void BecomeProgram(const char* const* arguments, const LChildStreams& streams,
                                int told, int failure) {
    SetDefaultSignals();
    if (streams.ownGroup)
        ::setpgid(0, 0);
    if (streams.diesWithStarter)
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (ConnectStandardStreams(streams)) {
        CloseOnExecFromFirstPrivate();
        if (told >= 0)
            ::dup2(told, kToldFd);
        sigset_t none;
        sigemptyset(&none);
        ::sigprocmask(SIG_SETMASK, &none, nullptr);
        // execv takes the list as modifiable by convention only.
        ::execv(arguments[0], const_cast<char* const*>(arguments));
    }
    const int error = errno;
    static_cast<void>(!::write(failure, &error, sizeof error));
    ::_exit(127);
}

bool ReadsNothing(const UniqueFd& fd) {
    char byte;
    ssize_t got;
    do {
        got = ::read(fd.Get(), &byte, 1);
    } while (got < 0 && errno == EINTR);
    return got == 0;
}

void Collect(pid_t pid, int* status) {
    while (::waitpid(pid, status, 0) < 0 && errno == EINTR) {
    }
}

// A process started with descriptors 0 to 2 closed must not hand a pipe to its child as one of
// those by accident, and what is still needed while the child gets its own must not be overwritten.
UniqueFd AwayFromTheChilds(int fd) {
    if (fd > kToldFd)
        return UniqueFd(fd);
    UniqueFd low(fd);
    return UniqueFd(::fcntl(fd, F_DUPFD_CLOEXEC, kToldFd + 1));
}

bool IsRunnableFile(const char* path) {
    struct stat status = {};
    return ::stat(path, &status) == 0 && S_ISREG(status.st_mode) && ::access(path, X_OK) == 0;
}

// The child's id once the program runs, -1 when it could not be run. A detached one belongs to
// nobody: its id is not told, 0 stands for it.
pid_t StartProgram(const char* const* arguments, const LChildStreams& streams, bool detached,
                   int told = -1) {
    LPipePair failure = LPipePair::Make();
    if (!failure.IsOpen())
        return -1;
    // No handler of this process may run in the child.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t pid = ::fork();
    if (pid == 0) {
        if (detached && ::fork() != 0)
            ::_exit(0);
        if (detached)
            ::setsid();
        BecomeProgram(arguments, streams, told, failure.writeEnd.Get());
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (pid < 0)
        return -1;
    failure.writeEnd.Reset();
    if (detached)
        Collect(pid, nullptr);
    if (ReadsNothing(failure.readEnd))
        return detached ? 0 : pid;
    if (!detached)
        Collect(pid, nullptr);
    return -1;
}

}  // namespace

LChildProcess LChildProcess::Start(const char* const* arguments, const LChildStreams& streams) {
    return LChildProcess(StartProgram(arguments, streams, false));
}

LChildProcess LChildProcess::StartShell(const char* command, const LChildStreams& streams) {
    if (!streams.tellsStatus) {
        const char* const arguments[] = {"/bin/sh", "-c", command, nullptr};
        return Start(arguments, streams);
    }
    LPipePair told = LPipePair::Make();
    if (!told.IsOpen())
        return {};
    const std::string text = std::string("( ") + command + "\n) 3>&-; echo $? >&3";
    const char* const arguments[] = {"/bin/sh", "-c", text.c_str(), nullptr};
    LChildProcess child(StartProgram(arguments, streams, false, told.writeEnd.Get()));
    child.told_ = std::move(told.readEnd);
    return child;
}

bool LChildProcess::HasEnded() const {
    pollfd told{told_.Get(), POLLIN, 0};
    return ::poll(&told, 1, 0) > 0;
}

int LChildProcess::ToldStatus() {
    if (!told_.IsOpen())
        return 0;
    std::string text;
    char part[16];
    for (ssize_t got;
         (got = ::read(told_.Get(), part, sizeof part)) > 0 || (got < 0 && errno == EINTR);)
        text.append(part, got > 0 ? static_cast<std::size_t>(got) : 0);
    told_.Reset();
    // A shell that is killed tells nothing.
    return text.empty() ? W_EXITCODE(0, SIGKILL) : W_EXITCODE(std::atoi(text.c_str()), 0);
}

int LChildProcess::Wait() {
    if (pid_ <= 0)
        return -1;
    const int told = ToldStatus();
    int status = 0;
    Collect(std::exchange(pid_, -1), &status);
    return status != 0 ? status : told;
}

LPipePair LPipePair::Make() {
    LPipePair pair;
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return pair;
    pair.readEnd = AwayFromTheChilds(ends[0]);
    pair.writeEnd = AwayFromTheChilds(ends[1]);
    return pair;
}

int RunShellCommand(const char* command) {
    LChildStreams streams;
    streams.emptyInput = true;
    streams.tellsStatus = true;
    return LChildProcess::StartShell(command, streams).Wait();
}

bool StartShellCommand(const char* command) {
    LChildStreams streams;
    streams.emptyInput = true;
    const char* const arguments[] = {"/bin/sh", "-c", command, nullptr};
    return StartProgram(arguments, streams, true) == 0;
}

bool IsProgramInstalled(const char* name) {
    const char* path = std::getenv("PATH");
    std::string_view rest = path ? path : "/usr/bin:/bin";
    while (!rest.empty()) {
        const std::size_t colon = rest.find(':');
        const std::string file = std::string(rest.substr(0, colon)) + '/' + name;
        if (colon != 0 && IsRunnableFile(file.c_str()))
            return true;
        if (colon == std::string_view::npos)
            return false;
        rest.remove_prefix(colon + 1);
    }
    return false;
}
