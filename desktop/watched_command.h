// A command that works for a while, as an installation does, and what it says meanwhile.
#pragma once

#include <string>

#include "foundation/processes/child_process.h"
#include "foundation/threads/progress.h"

// One run of one command. One thread.
class LWatchedCommand {
public:
    LWatchedCommand() = default;
    LWatchedCommand(const LWatchedCommand&) = delete;
    LWatchedCommand& operator=(const LWatchedCommand&) = delete;
    // Leaves a command alone that has not ended: halted in the middle it could leave a machine
    // half installed.
    ~LWatchedCommand();

    // Through the shell, with an empty standard input. False: it could not be started.
    bool Start(const std::string& command);

    // Looks what it has said; true once it has ended. Does not wait.
    bool HasEnded();
    // The last line said, as the reason of a failure usually is; from both outputs.
    const std::string& LastLine() const { return lastLine_; }
    bool HasSucceeded() const { return status_ == 0; }
    int ExitStatus() const;  // once it has ended; -1 when it did not end by itself

private:
    LChildProcess child_;
    UniqueFd output_;  // a file, so that the command can go on talking when nobody listens
    std::string lastLine_;
    int status_ = -1;
};

// Done: it succeeded. Failed: it did not, or could not be started. Stopped: nobody waits any more,
// and it goes on.
LProcessResult Process(LProgress& progress, LWatchedCommand& command);
