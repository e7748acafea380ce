#include "foundation/processes/pipes.h"

#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

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
    return child_.Wait();
}

bool LPipeIn::_Open(const char* commandLine) {
    Close();
    LPipePair pipe = LPipePair::Make();
    if (!pipe.IsOpen())
        return false;
    LChildStreams streams;
    streams.output = pipe.writeEnd.Get();
    streams.tellsStatus = true;
    LChildProcess child = LChildProcess::StartShell(commandLine, streams);
    pipe.writeEnd.Reset();
    return Adopt(std::move(pipe.readEnd), "r", std::move(child));
}

bool LPipeOut::_Open(const char* commandLine) {
    Close();
    LPipePair pipe = LPipePair::Make();
    if (!pipe.IsOpen())
        return false;
    LChildStreams streams;
    streams.input = pipe.readEnd.Get();
    streams.noOutput = true;
    streams.ownGroup = true;
    streams.tellsStatus = true;
    LChildProcess child = LChildProcess::StartShell(commandLine, streams);
    pipe.readEnd.Reset();
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
