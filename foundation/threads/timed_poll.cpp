#include "foundation/threads/timed_poll.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <limits>

int TimedPoll(pollfd* entries, nfds_t count, long long milliseconds) {
    using Clock = std::chrono::steady_clock;
    const bool limited = milliseconds >= 0;
    const auto end = Clock::now() + std::chrono::milliseconds(limited ? milliseconds : 0);
    long long remaining = milliseconds;
    for (;;) {
        constexpr long long kLongest = std::numeric_limits<int>::max();
        const int timeout = limited ? static_cast<int>(std::min(remaining, kLongest)) : -1;
        const int result = ::poll(entries, count, timeout);
        if (result > 0 || (result < 0 && errno != EINTR))
            return result;
        if (!limited)
            continue;
        remaining = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        if (remaining <= 0)
            return 0;
    }
}
