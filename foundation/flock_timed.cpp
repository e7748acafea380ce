#include "foundation/flock_timed.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <ctime>

namespace {

constexpr std::int64_t kNanosecondsAMillisecond = 1000000;
constexpr std::int64_t kFirstTurnPause = 200000;     // nanoseconds
constexpr std::int64_t kLongestTurnPause = 5000000;  // likewise

void SleepNanoseconds(std::int64_t nanoseconds) {
    timespec rest{};
    rest.tv_sec = static_cast<time_t>(nanoseconds / (1000 * kNanosecondsAMillisecond));
    rest.tv_nsec = static_cast<long>(nanoseconds % (1000 * kNanosecondsAMillisecond));
    while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
}

// True when it is ours or the file system has no such locks, false when somebody kept it all the
// time.
bool WaitForTurn(int fd, bool exclusive, int timeoutMilliseconds) {
    struct flock turn {};
    turn.l_type = exclusive ? F_WRLCK : F_RDLCK;
    turn.l_whence = SEEK_SET;
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMilliseconds);
    std::int64_t pause = kFirstTurnPause;
    while (fcntl(fd, F_OFD_SETLK, &turn) != 0) {
        if (errno != EAGAIN && errno != EACCES)
            return true;
        if (std::chrono::steady_clock::now() >= end)
            return false;
        SleepNanoseconds(pause);
        pause = std::min(pause + pause / 8, kLongestTurnPause);
    }
    return true;
}

}  // namespace

bool flocktimed(int fd, int operation, int timeoutMilliseconds) {
    std::int64_t pause = timeoutMilliseconds / 32 + 1;
    do {
        if (flock(fd, operation) == 0)
            return true;
        if (errno != EWOULDBLOCK)
            return false;
        SleepNanoseconds(pause * kNanosecondsAMillisecond);
        pause *= 2;
    } while (timeoutMilliseconds > pause);
    // The last pause is followed by no try: 2000 ms end after 1953.
    return false;
}

bool LockInTurn(int fd, int operation, int timeoutMilliseconds) {
    const auto start = std::chrono::steady_clock::now();
    if (!WaitForTurn(fd, (operation & LOCK_EX) != 0, timeoutMilliseconds))
        return flock(fd, operation) == 0;
    const auto queued = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    const std::int64_t left = timeoutMilliseconds - queued.count();
    return flocktimed(fd, operation, static_cast<int>(std::max(left, std::int64_t{0})));
}
