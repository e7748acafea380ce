// poll() that sleeps its whole time.
#pragma once

#include <poll.h>

// Blocks until an entry has an event or the time has passed, however often a signal handler
// interrupts; milliseconds below 0 wait without limit. The number of entries with events, 0 on
// time-out, -1 on failure.
int TimedPoll(pollfd* entries, nfds_t count, long long milliseconds);
