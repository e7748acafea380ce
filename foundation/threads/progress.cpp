#include "foundation/threads/progress.h"

#include "foundation/threads/timed_poll.h"

LProcessResult LSilentProgress::ProcessWait(unsigned int milliseconds) {
    TimedPoll(nullptr, 0, milliseconds);
    return kProcessDone;
}
