#include "foundation/threads/ticks.h"

#include <sys/time.h>

std::uint32_t GetTickCount() {
    timeval now{};
    gettimeofday(&now, nullptr);
    const auto milliseconds = static_cast<std::uint64_t>(now.tv_sec) * 1000 +
                              static_cast<std::uint64_t>(now.tv_usec) / 1000;
    return static_cast<std::uint32_t>(milliseconds);
}
