// A table of signals for one wait.
#pragma once

#include <poll.h>

#include "foundation/threads/signal_object.h"

class LSignalObjectGroup {
public:
    static constexpr int kMaxEntries = 256;

    void Add(LSignalObjectRef signal);  // signals past the 256th are left out
    int Count() const { return count_; }
    // Polls all entries; true when any is signalled within the time.
    bool Wait(unsigned int milliseconds);
    bool WasSignaled(int index) const;  // as the last wait saw it

private:
    pollfd entries_[kMaxEntries] = {};
    int count_ = 0;
};
