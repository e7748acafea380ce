// A program that the tests crash, and that logs: crash handler and log arm themselves in whatever
// links them.
//   crash WAY BOX  crashes in the given way, with BOX (if not empty) as the program that asks
//   log TEXT       writes a line of every kind
//   files NAME     makes a file of every kind in the home folder and the machine-wide one
//   run leave|end  marks a run in progress, and leaves it so or ends it cleanly
#include <gdk/gdk.h>
#include <malloc.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <string_view>
#include <thread>

#include "foundation/crash/crash_box_program.h"
#include "foundation/crash/crash_handler.h"
#include "foundation/crash/hang_detector.h"
#include "foundation/files/file.h"
#include "foundation/files/lock_file.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/text_file.h"
#include "foundation/log/log.h"
#include "foundation/processes/child_process.h"
#include "foundation/settings/dat_file.h"
#include "foundation/settings/settings.h"
#include "foundation/settings/settings_record.h"
#include "foundation/threads/thread.h"

namespace {

void Fault() {
    volatile int* volatile nowhere = reinterpret_cast<int*>(16);
    *nowhere = 1;
}

// malloc_stats prints each arena's figures with that arena's lock held, which the heap minds only
// among several threads.
void FaultWithGdkAndHeapLocked() {
    gdk_threads_init();
    gdk_threads_enter();
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
    void ThreadFunction() override {
        volatile char start = 0;
        ::_exit(Recurse(&start));
    }
};

void Crash(std::string_view way) {
    if (way == "heap")
        FaultWithGdkAndHeapLocked();
    if (way == "stack") {
        static StackEater thread;
        thread.Start(0);
        ::pause();
    }
    if (way == "later") {
        std::thread([] {
            while (bLLibExceptionAlreadyTrapped == 0)
                ::usleep(1000);
            ::usleep(100000);  // the box is up
            ::raise(SIGILL);
        }).detach();
    }
    if (way == "together") {
        static std::atomic<int> ready{0};
        const auto faultTogether = [] {
            for (++ready; ready < 3;) {
            }
            Fault();
        };
        std::thread(faultTogether).detach();
        std::thread(faultTogether).detach();
        faultTogether();
    }
    if (way == "illegal")
        ::raise(SIGILL);
    if (way == "user")
        ::raise(SIGUSR1);
    Fault();
}

void MakeFiles(const char* name) {
    const std::string home = HomeFolder() + "/";
    LUserSettingSetString(name, "key", "value");
    LSettingSetString(name, "key", "value");
    LSettingsRecord record;
    LSettingsRecord((home + "record").c_str()).CreateSubRecord(name, record);
    LOG(name);
    LDatFile((home + "data").c_str()).SetString("section", name, "value");
    LDatFileFlush();
    SaveText((home + "text").c_str(), name);
    LFile::CopyFolderFiles(home.c_str(), (home + "copy").c_str());
    RunShellCommand("umask >\"$HOME/umask\"");
    LLockFile lock;
    lock.Lock((home + "run.pid").c_str());
    ::_exit(0);  // the lock stays for the test to look at
}

}  // namespace

int main(int argc, char** argv) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // a test that is stopped leaves nothing behind
    const rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    const std::string_view what = argc > 2 ? argv[1] : "";
    if (what == "crash" && argc > 3) {
        if (std::string_view(argv[2]) != "user")
            LDebugBlockSignals();
        if (*argv[3])
            SetCrashBoxProgram(argv[3]);
        Crash(argv[2]);
    } else if (what == "log") {
        LOG(argv[2]);
        LOGERROR(argv[2], -1);
        LOGWARN(argv[2], "+");
        LOGINFOF("%s %d %%", argv[2], 2);
        LLogWrite("named.txt", argv[2]);
        LLogMonthlyWrite(951782400, "monthly.txt", argv[2]);  // 29 February 2000
    } else if (what == "files") {
        MakeFiles(argv[2]);
    } else if (what == "run") {
        LDebugHangDetectorInit();
        if (std::string_view(argv[2]) == "leave")
            ::_exit(0);
    }
    return 0;
}
