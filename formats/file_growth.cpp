#include "formats/file_growth.h"

#include <errno.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "formats/file_io.h"
#include "foundation/threads/timed_poll.h"

namespace {

// Where the kernel has no more watches to give, the file is looked at in turn.
constexpr int kLookMilliseconds = 20;

// True when another open of the file is locked: its writer lives.
bool IsLockedElsewhere(int file) {
    if (::flock(file, LOCK_EX | LOCK_NB) != 0)
        return errno == EWOULDBLOCK;
    (void)::flock(file, LOCK_UN);
    return false;
}

// How long the file has been left alone already, by its time stamp.
std::chrono::milliseconds QuietSoFar(int file) {
    struct stat info = {};
    if (::fstat(file, &info) != 0)
        return {};
    const auto written = std::chrono::system_clock::from_time_t(info.st_mtim.tv_sec) +
                         std::chrono::milliseconds(info.st_mtim.tv_nsec / 1000000);
    const auto quiet = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::system_clock::now() - written);
    return std::clamp(quiet, std::chrono::milliseconds(0), FileGrowth::kQuietTime);
}

}  // namespace

FileGrowth::FileGrowth(int file)
    : file_(file), lastSize_(FileSize(file)), lastChange_(Clock::now() - QuietSoFar(file)) {}

bool FileGrowth::IsOver(std::int64_t size) {
    if (size != lastSize_) {
        lastSize_ = size;
        lastChange_ = Clock::now();
        return false;
    }
    if (IsLockedElsewhere(file_)) {
        sawWriter_ = true;
        return false;
    }
    return sawWriter_ || Clock::now() - lastChange_ >= kQuietTime;
}

void FileGrowth::Watch() {
    if (isWatching_)
        return;
    isWatching_ = true;
    events_ = UniqueFd(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    // Through the descriptor, so that it is this file even when its name has gone to another.
    const std::string path = "/proc/self/fd/" + std::to_string(file_);
    if (events_.IsOpen() && ::inotify_add_watch(events_.Get(), path.c_str(),
                                                IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE) < 0)
        events_.Reset();
}

bool FileGrowth::Wait(int milliseconds, LSignalObjectRef interrupt) {
    pollfd entries[] = {{interrupt.ReadFd(), POLLIN, 0}, {events_.Get(), POLLIN, 0}};
    const int limit = events_.IsOpen() ? milliseconds : std::min(milliseconds, kLookMilliseconds);
    TimedPoll(entries, 2, limit);
    if (entries[1].revents != 0) {
        alignas(inotify_event) char drained[4096];
        while (::read(events_.Get(), drained, sizeof(drained)) > 0) {
        }
    }
    return entries[0].revents == 0;
}
