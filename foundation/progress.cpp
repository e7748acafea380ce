#include "foundation/progress.h"

#include "foundation/timed_poll.h"

LProcessResult LSilentProgress::ProcessWait(unsigned int milliseconds) {
    TimedPoll(nullptr, 0, milliseconds);
    return kProcessDone;
}
