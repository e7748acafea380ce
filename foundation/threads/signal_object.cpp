#include "foundation/threads/signal_object.h"

#include <fcntl.h>
#include <poll.h>

#include <cerrno>

#include "foundation/threads/timed_poll.h"

namespace {

bool WaitAny(const int* readFds, nfds_t count, long long milliseconds) {
    pollfd entries[3] = {};
    for (nfds_t i = 0; i < count; ++i)
        entries[i] = {readFds[i], POLLIN, 0};
    if (TimedPoll(entries, count, milliseconds) <= 0)
        return false;
    for (nfds_t i = 0; i < count; ++i)
        if (entries[i].revents & POLLIN)
            return true;
    return false;
}

}  // namespace

bool LSignalObjectRef::WaitSignal(unsigned int milliseconds) const {
    return WaitAny(&readFd_, 1, milliseconds);
}

void LSignalObjectRef::WaitSignalForever() const {
    WaitAny(&readFd_, 1, -1);
}

bool LSignalObjectRef::IsSignaled() const {
    return WaitSignal(0);
}

bool LSignalObjectRef::WaitSignalDual(LSignalObjectRef second, unsigned int milliseconds) const {
    const int readFds[] = {readFd_, second.readFd_};
    return WaitAny(readFds, 2, milliseconds);
}

bool LSignalObjectRef::WaitSignalTriple(LSignalObjectRef second, LSignalObjectRef third,
                                        unsigned int milliseconds) const {
    const int readFds[] = {readFd_, second.readFd_, third.readFd_};
    return WaitAny(readFds, 3, milliseconds);
}

LSignalObject::LSignalObject() {
    int ends[2];
    if (::pipe2(ends, O_NONBLOCK | O_CLOEXEC) != 0)
        return;
    readEnd_.Reset(ends[0]);
    writeEnd_.Reset(ends[1]);
}

void LSignalObject::Signal() {
    const char byte = 1;
    while (::write(writeEnd_.Get(), &byte, 1) < 0 && errno == EINTR) {
    }
}

void LSignalObject::Reset() {
    char bytes[64];
    ssize_t length;
    do {
        length = ::read(readEnd_.Get(), bytes, sizeof bytes);
    } while (length > 0 || (length < 0 && errno == EINTR));
}
