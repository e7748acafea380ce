// A program that the tests crash, and that logs: crash handler and log arm themselves in whatever
// links them.
//   crash WAY BOX  crashes in the given way, with BOX as the program that asks
//   log COUNT TEXT writes COUNT lines of every kind
//   run leave|end  marks a run in progress, and leaves it so or ends it cleanly
#include <pthread.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <malloc.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <thread>

#include "foundation/crash_box_program.h"
#include "foundation/crash_handler.h"
#include "foundation/hang_detector.h"
#include "foundation/log.h"
#include "foundation/thread.h"

namespace {

void Fault() {
    volatile int* volatile nowhere = reinterpret_cast<int*>(16);
    *nowhere = 1;
}

// malloc_stats prints each arena's figures with that arena's lock held. The heap minds its locks
// only in a process with several threads.
void FaultWithHeapLocked() {
    std::thread([] { ::pause(); }).detach();
    cookie_io_functions_t functions{};
    functions.write = [](void*, const char*, size_t length) {
        Fault();
        return static_cast<ssize_t>(length);
    };
    stderr = ::fopencookie(nullptr, "w", functions);
    std::setvbuf(stderr, nullptr, _IONBF, 0);
    ::malloc_stats();
}

int Recurse(volatile char* above) {
    volatile char block[4096];
    block[0] = *above;
    if (block[0])  // never
        return 0;
    return Recurse(block) + block[0];
}

class StackEater final : public LThread {
public:
    ~StackEater() override { Join(); }

private:
    void ThreadFunction() override {
        volatile char start = 0;
        std::exit(Recurse(&start));
    }
};

class Trapper final : public LThread {
public:
    ~Trapper() override { Join(); }

private:
    void ThreadFunction() override {
        while (bLLibExceptionAlreadyTrapped == 0)
            ::usleep(1000);
        ::usleep(300000);  // the box is up
        ::raise(SIGILL);
    }
};

void Crash(std::string_view way) {
    if (way == "heap")
        FaultWithHeapLocked();
    if (way == "stack") {
        StackEater thread;
        thread.Start(0);
    }
    if (way == "thread") {
        Trapper thread;
        thread.Start(0);
        Fault();
    }
    if (way == "illegal")
        ::raise(SIGILL);
    if (way == "user") {
        sigset_t user;
        sigemptyset(&user);
        sigaddset(&user, SIGUSR1);
        ::raise(SIGUSR1);  // stays pending while blocked
        ::pthread_sigmask(SIG_UNBLOCK, &user, nullptr);
    }
    Fault();
}

void WriteLog(int count, const char* text) {
    for (int i = 0; i < count; ++i) {
        LOG(text);
        LOGERROR(text, i);
        LOGWARN(text, text);
        LOGINFOF("%s %d %%", text, i);
    }
    LLogWrite("named.txt", text);
    LLogMonthlyWrite(951782400, "monthly.txt", text);  // 29 February 2000
}

}  // namespace

int main(int argc, char** argv) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // a test that is stopped leaves nothing behind
    const rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    if (argc == 4 && !std::strcmp(argv[1], "crash")) {
        LDebugBlockSignals();
        if (*argv[3])
            SetCrashBoxProgram(argv[3]);
        Crash(argv[2]);
    }
    if (argc == 4 && !std::strcmp(argv[1], "log"))
        WriteLog(std::atoi(argv[2]), argv[3]);
    if (argc == 3 && !std::strcmp(argv[1], "run")) {
        LDebugHangDetectorInit();
        if (!std::strcmp(argv[2], "leave"))
            ::_exit(0);
    }
    return 0;
}
