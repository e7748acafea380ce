// Crashes with everything held that a box shown by this process itself would need: GDK's lock, and
// the heap's.
//   foundation_gdk_child   (the real box program stands beside it)
#include <gdk/gdk.h>
#include <malloc.h>
#include <sys/resource.h>

#include <cstdio>

#include "foundation/crash_handler.h"

int main(int argc, char** argv) {
    const rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    LDebugBlockSignals();
    gdk_threads_init();
    gdk_init(&argc, &argv);
    gdk_threads_enter();
    cookie_io_functions_t functions{};
    functions.write = [](void*, const char*, size_t length) {
        volatile int* volatile nowhere = nullptr;
        *nowhere = 1;
        return static_cast<ssize_t>(length);
    };
    stderr = ::fopencookie(nullptr, "w", functions);
    std::setvbuf(stderr, nullptr, _IONBF, 0);
    ::malloc_stats();  // prints each arena's figures with that arena's lock held
    return 0;
}
