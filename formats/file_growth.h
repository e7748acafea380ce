// Following a file that somebody else still writes, in this process or another.
#pragma once

#include <chrono>
#include <cstdint>

#include "foundation/files/unique_fd.h"
#include "foundation/threads/signal_object.h"

// Tells when the file has changed, without looking at the disk over and over, and when nobody
// writes it any more. Sinks hold a shared lock on their file; writers that do not are taken for
// gone after kQuietTime without a change. One thread.
class FileGrowth {
public:
    static constexpr std::chrono::milliseconds kQuietTime{3000};

    explicit FileGrowth(int file);  // borrowed; outlives this

    // size is the file's, as just seen. True when no writer will make it longer.
    bool IsOver(std::int64_t size);

    // From here on changes end Wait, those that happen before it is called too.
    void Watch();
    // Blocks until the file changed, the time has passed or interrupt is signalled, and may return
    // early. False when it was the interrupt.
    bool Wait(int milliseconds, LSignalObjectRef interrupt);

private:
    using Clock = std::chrono::steady_clock;

    int file_;
    std::int64_t lastSize_;
    Clock::time_point lastChange_;
    bool sawWriter_ = false;
    bool isWatching_ = false;
    UniqueFd events_;
};
