// A manual-reset event on a pipe, so that it can be waited on together with any other descriptor.
#pragma once

#include "foundation/files/unique_fd.h"

// Borrowed read end of a signal; copyable, must not outlive its LSignalObject. Safe from any
// thread. Waits never consume the signal. A signal whose pipe could not be made is never signalled:
// waits time out.
class LSignalObjectRef {
public:
    LSignalObjectRef() = default;
    explicit LSignalObjectRef(int readFd) : readFd_(readFd) {}

    bool WaitSignal(unsigned int milliseconds) const;  // true when signalled within the time
    void WaitSignalForever() const;
    bool IsSignaled() const;
    // True when any of them is signalled within the time.
    bool WaitSignalDual(LSignalObjectRef second, unsigned int milliseconds) const;
    bool WaitSignalTriple(LSignalObjectRef second, LSignalObjectRef third,
                          unsigned int milliseconds) const;

    int ReadFd() const { return readFd_; }  // for poll; -1 when the pipe could not be made

private:
    int readFd_ = -1;
};

class LSignalObject {
public:
    LSignalObject();  // both ends non-blocking and close-on-exec
    LSignalObject(const LSignalObject&) = delete;
    LSignalObject& operator=(const LSignalObject&) = delete;

    void Signal();  // never blocks; any thread
    void Reset();   // takes back all pending signals
    LSignalObjectRef Ref() const { return LSignalObjectRef(readEnd_.Get()); }

private:
    UniqueFd readEnd_;
    UniqueFd writeEnd_;
};
