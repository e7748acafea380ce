// Starting and collecting child processes.
//
// Every child starts with default signal dispositions, and nothing blocked,
// whatever this process ignores or blocks, and inherits descriptors 0 to 2 only. Safe from any
// thread.
#pragma once

#include <sys/types.h>

#include <utility>

#include "foundation/files/unique_fd.h"

// Where a child's standard input, output and error lead. Descriptors are borrowed, 3 or above; -1
// inherits this process's own.
struct LChildStreams {
    int input = -1;
    int output = -1;
    int errors = -1;
    bool emptyInput = false;  // input reads as empty (wins over input)
    bool noOutput = false;    // output goes nowhere (wins over output)
    bool ownGroup = false;    // the child leads a process group of its own
    // The child is killed when the thread that started it ends, as it does when this process is
    // killed. Not inherited by the child's own children.
    bool diesWithStarter = false;
    // Of a shell command: its status cannot be lost. The shell stays until the command has ended
    // and says how on descriptor 3, which the command does not get.
    bool tellsStatus = false;
};

// Sole owner of a started child. Destruction waits for it, so that no zombie is left.
class LChildProcess {
public:
    LChildProcess() = default;
    LChildProcess(LChildProcess&& other) noexcept
        : pid_(std::exchange(other.pid_, -1)), told_(std::move(other.told_)) {}
    LChildProcess& operator=(LChildProcess&& other) noexcept {
        if (this != &other) {
            Wait();
            pid_ = std::exchange(other.pid_, -1);
            told_ = std::move(other.told_);
        }
        return *this;
    }
    LChildProcess(const LChildProcess&) = delete;
    LChildProcess& operator=(const LChildProcess&) = delete;
    ~LChildProcess() { Wait(); }

    // arguments[0] is the path of the program, the list ends with a null pointer. Not started:
    // IsStarted() is false.
    static LChildProcess Start(const char* const* arguments, const LChildStreams& streams);
    static LChildProcess StartShell(const char* command,
                                    const LChildStreams& streams);  // "/bin/sh -c"

    bool IsStarted() const { return pid_ > 0; }  // true until waited for
    pid_t Pid() const { return pid_; }
    // Of one that tells its status: whether it has ended. Does not wait.
    bool HasEnded() const;
    // Blocks until the child ended and answers its wait status; 0 when the status is lost because
    // SIGCHLD is ignored (the kernel then collects children itself) and not told, -1 when there is
    // no child.
    int Wait();
    // Whoever takes it, or the kernel, collects the child.
    pid_t Release() { return std::exchange(pid_, -1); }

private:
    explicit LChildProcess(pid_t pid) : pid_(pid) {}
    int ToldStatus();

    pid_t pid_ = -1;
    UniqueFd told_;  // where its status comes as text
};

// A pipe whose ends are close-on-exec and never one of 0 to 3; both closed when it could not be
// made.
struct LPipePair {
    UniqueFd readEnd;
    UniqueFd writeEnd;
    static LPipePair Make();
    bool IsOpen() const { return readEnd.IsOpen() && writeEnd.IsOpen(); }
};

// Runs the command through the shell with an empty standard input and waits for its end. Its wait
// status, -1 when it could not be started.
int RunShellCommand(const char* command);

// Starts the command with an empty standard input, in a session of its own, and leaves it alone: it
// may run as long as it likes and outlive this process. False when the shell could not be run.
bool StartShellCommand(const char* command);

// True when a program of this name can be run from the folders of PATH.
bool IsProgramInstalled(const char* name);
