// Crashes with everything held that a box shown by this process itself would need: GDK's lock, and
// the heap's.
//   foundation_gdk_child   (the real box program stands beside it)
#include <gdk/gdk.h>
#include <malloc.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <thread>

#include "foundation/crash_handler.h"

int main(int argc, char** argv) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // a test that is stopped leaves nothing behind
    const rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    LDebugBlockSignals();
    gdk_threads_init();
    gdk_init(&argc, &argv);
    gdk_threads_enter();
    std::thread([] { ::pause(); }).detach();  // the heap minds its locks only among several threads
    cookie_io_functions_t functions{};
    functions.write = [](void*, const char*, size_t length) {
        volatile int* volatile nowhere = reinterpret_cast<int*>(16);
        *nowhere = 1;
        return static_cast<ssize_t>(length);
    };
    stderr = ::fopencookie(nullptr, "w", functions);
    std::setvbuf(stderr, nullptr, _IONBF, 0);
    ::malloc_stats();  // prints each arena's figures with that arena's lock held
    return 0;
}
