// Every test program keeps its settings and logs in the build's own folders, also where it is
// started without CTest: the settings stores make their folders before main().
#include <cstdlib>

namespace {

[[gnu::constructor(101)]] void KeepOffTheMachine() {
    if (std::getenv("LECTORA_ROOT") == nullptr) {
        ::setenv("LECTORA_ROOT", LECTORA_TEST_FOLDER "/test-root", 1);
        ::setenv("HOME", LECTORA_TEST_FOLDER "/test-home", 1);
    }
}

}  // namespace
