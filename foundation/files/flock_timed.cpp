#include "foundation/files/flock_timed.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <optional>

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

using Clock = std::chrono::steady_clock;

// Calls tryOnce() until it answers something, with short pauses; false at the end of the time.
template <typename Try>
bool Poll(Clock::time_point end, Try tryOnce) {
    std::int64_t pause = kFirstTurnPause;
    for (;;) {
        if (const std::optional<bool> result = tryOnce())
            return *result;
        if (Clock::now() >= end)
            return false;
        SleepNanoseconds(pause);
        pause = std::min(pause + pause / 8, kLongestTurnPause);
    }
}

bool SetTurn(int fd, short type) {
    struct flock turn = {};
    turn.l_type = type;
    turn.l_whence = SEEK_SET;
    return fcntl(fd, F_OFD_SETLK, &turn) == 0;
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
    const auto end = Clock::now() + std::chrono::milliseconds(timeoutMilliseconds);
    const bool exclusive = (operation & LOCK_EX) != 0;
    // A file system without record locks lets everybody through.
    Poll(end, [&]() -> std::optional<bool> {
        if (SetTurn(fd, exclusive ? F_WRLCK : F_RDLCK))
            return true;
        return errno == EAGAIN || errno == EACCES ? std::nullopt : std::optional(false);
    });
    const bool locked = Poll(end, [&]() -> std::optional<bool> {
        if (flock(fd, operation) == 0)
            return true;
        return errno == EWOULDBLOCK ? std::nullopt : std::optional(false);
    });
    if (!exclusive)
        SetTurn(fd, F_UNLCK);
    return locked;
}
