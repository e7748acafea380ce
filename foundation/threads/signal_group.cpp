#include "foundation/threads/signal_group.h"

#include "foundation/threads/timed_poll.h"

void LSignalObjectGroup::Add(LSignalObjectRef signal) {
    if (count_ < kMaxEntries)
        entries_[count_++] = {signal.ReadFd(), POLLIN, 0};
}

bool LSignalObjectGroup::Wait(unsigned int milliseconds) {
    if (TimedPoll(entries_, static_cast<nfds_t>(count_), milliseconds) <= 0)
        return false;
    for (int i = 0; i < count_; ++i)
        if (WasSignaled(i))
            return true;
    return false;
}

bool LSignalObjectGroup::WasSignaled(int index) const {
    return index >= 0 && index < count_ && (entries_[index].revents & POLLIN) != 0;
}
