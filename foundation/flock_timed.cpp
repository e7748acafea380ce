#include "foundation/flock_timed.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <ctime>

namespace {

constexpr std::int64_t kNanosecondsAMillisecond = 1000000;
constexpr std::int64_t kTurnPause = 200000;  // nanoseconds

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
    while (fcntl(fd, F_OFD_SETLK, &turn) != 0) {
        if (errno != EAGAIN && errno != EACCES)
            return true;
        if (std::chrono::steady_clock::now() >= end)
            return false;
        SleepNanoseconds(kTurnPause);
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
    if (WaitForTurn(fd, (operation & LOCK_EX) != 0, timeoutMilliseconds))
        return flocktimed(fd, operation, timeoutMilliseconds);
    return flock(fd, operation) == 0;
}
