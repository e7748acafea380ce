#include "speech/engine_input.h"

#include <signal.h>
#include <time.h>

#include "foundation/files/file_io.h"

namespace {

// Keeps a write to an engine that has gone from ending this program.
class BrokenPipeGuard {
public:
    BrokenPipeGuard() {
        sigemptyset(&brokenPipe_);
        sigaddset(&brokenPipe_, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &brokenPipe_, &before_);
    }
    BrokenPipeGuard(const BrokenPipeGuard&) = delete;
    BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;
    ~BrokenPipeGuard() {
        const timespec now{};
        if (!wasPending_)
            sigtimedwait(&brokenPipe_, nullptr, &now);
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

private:
    sigset_t brokenPipe_;
    sigset_t before_;
    bool wasPending_;
};

}  // namespace

void WriteToEngine(int fd, std::string_view text) {
    const BrokenPipeGuard guard;
    WriteFully(fd, text);  // an engine that has gone may have answered all the same
}
