#include "foundation/processes/pipes.h"

#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

bool LPipeStream::Adopt(UniqueFd ourEnd, const char* mode, LChildProcess child) {
    if (!child.IsStarted())
        return false;
    child_ = std::move(child);
    fd_ = ourEnd.Get();
    stream_ = ::fdopen(fd_, mode);
    if (stream_) {
        ourEnd.Release();
        return true;
    }
    fd_ = -1;
    ourEnd.Reset();  // the command sees the end of its pipe and ends
    child_.Wait();
    return false;
}

int LPipeStream::Close() {
    if (stream_)
        std::fclose(stream_);
    stream_ = nullptr;
    fd_ = -1;
    const int told = ToldStatus();
    const int status = child_.Wait();
    return status != 0 ? status : told;
}

int LPipeStream::ToldStatus() {
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

bool LPipeIn::_Open(const char* commandLine) {
    Close();
    LPipePair pipe = LPipePair::Make();
    if (!pipe.IsOpen())
        return false;
    LChildStreams streams;
    streams.output = pipe.writeEnd.Get();
    LChildProcess child = LChildProcess::StartShell(commandLine, streams);
    pipe.writeEnd.Reset();
    return Adopt(std::move(pipe.readEnd), "r", std::move(child));
}

bool LPipeOut::_Open(const char* commandLine) {
    Close();
    LPipePair pipe = LPipePair::Make();
    LPipePair told = LPipePair::Make();
    if (!pipe.IsOpen() || !told.IsOpen())
        return false;
    LChildStreams streams;
    streams.input = pipe.readEnd.Get();
    streams.output = told.writeEnd.Get();
    streams.ownGroup = true;
    const std::string command = std::string("( ") + commandLine + "\n) >/dev/null; echo $?";
    LChildProcess child = LChildProcess::StartShell(command.c_str(), streams);
    pipe.readEnd.Reset();
    told_ = std::move(told.readEnd);
    return Adopt(std::move(pipe.writeEnd), "w", std::move(child));
}

bool LPipeInOut::_Open(const char* commandLine) {
    Close();
    LPipePair fromChild = LPipePair::Make();
    LPipePair toChild = LPipePair::Make();
    if (!fromChild.IsOpen() || !toChild.IsOpen())
        return false;
    // Before the start: a child that ends while SIGCHLD still has its default stays a zombie.
    ::signal(SIGCHLD, SIG_IGN);
    LChildStreams streams;
    streams.ownGroup = true;
    streams.input = toChild.readEnd.Get();
    streams.output = fromChild.writeEnd.Get();
    LChildProcess child = LChildProcess::StartShell(commandLine, streams);
    if (!child.IsStarted())
        return false;
    pid_ = child.Release();
    process_.Reset(static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0)));
    readEnd_ = std::move(fromChild.readEnd);
    writeEnd_ = std::move(toChild.writeEnd);
    return true;
}

void LPipeInOut::Close() {
    readEnd_.Reset();
    writeEnd_.Reset();
}

void LPipeInOut::Kill() {
    pollfd ended{process_.Get(), POLLIN, 0};
    if (process_.IsOpen() && ::poll(&ended, 1, 0) == 0)
        ::kill(-pid_, SIGKILL);
}
