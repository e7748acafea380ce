// Pipes to and from a shell command. One thread at a time.
#pragma once

#include <cstdio>

#include "foundation/processes/child_process.h"

// What LPipeIn and LPipeOut share: a stdio stream on our end, and the child at the other.
class LPipeStream {
public:
    LPipeStream(const LPipeStream&) = delete;
    LPipeStream& operator=(const LPipeStream&) = delete;

    bool IsOpen() const { return stream_ != nullptr; }
    std::FILE* Stream() const { return stream_; }  // borrowed; null when not open
    int Fd() const { return fd_; }                 // borrowed; the stream's, -1 when not open
    pid_t Pid() const { return child_.Pid(); }
    // Flushes and closes our end, then blocks until the command ended. Its wait status, -1 when
    // nothing is open.
    int Close();

protected:
    LPipeStream() = default;
    ~LPipeStream() { Close(); }
    bool Adopt(UniqueFd ourEnd, const char* mode, LChildProcess child);

private:
    std::FILE* stream_ = nullptr;
    int fd_ = -1;
    LChildProcess child_;
};

// Reads what a command writes to its standard output.
class LPipeIn : public LPipeStream {
public:
    bool _Open(const char* commandLine);  // false: not started, nothing is open; closes an earlier
                                          // command first
};

// Writes to a command's standard input; its standard output goes nowhere. The command leads a
// process group of its own. One that ended raises SIGPIPE in a writer that does not block or ignore
// it.
class LPipeOut : public LPipeStream {
public:
    bool _Open(const char* commandLine);
};

// Converses with a command over its standard input and output. Nobody waits for the command:
// opening one sets SIGCHLD to be ignored, so that the kernel collects it (and the statuses of all
// later children of this process are lost).
class LPipeInOut {
public:
    LPipeInOut() = default;
    LPipeInOut(const LPipeInOut&) = delete;
    LPipeInOut& operator=(const LPipeInOut&) = delete;

    bool _Open(const char* commandLine);
    bool IsOpen() const { return readEnd_.IsOpen(); }
    // The command's standard output and input; -1 when not open.
    int ReadFd() const { return readEnd_.Get(); }
    int WriteFd() const { return writeEnd_.Get(); }
    pid_t Pid() const { return pid_; }  // last command started, -1 before; may have ended already
    void CloseWrite() { writeEnd_.Reset(); }  // the command reads the end of its input
    void Close();                             // does not wait
    // Ends the command and what it has started, if it still runs. Works until the next _Open.
    void Kill();

private:
    UniqueFd readEnd_;
    UniqueFd writeEnd_;
    UniqueFd process_;  // tells whether pid_ is still this command: ids are used again
    pid_t pid_ = -1;
};
