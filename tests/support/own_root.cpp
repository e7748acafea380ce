// Every test program keeps its settings and logs in a folder of its own, gone with it: several run
// at a time, and a machine-wide setting that one of them tries would be read by the others. The
// settings stores make their folders before main().
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

// What a process that ends without its destructors leaves behind lies in the build's folder.
char OwnFolder[] = LECTORA_TEST_FOLDER "/test-homes/XXXXXX";
pid_t Owner = 0;  // a fork takes nothing away from its parent

[[gnu::constructor(101)]] void KeepOffTheMachine() {
    if (std::getenv("LECTORA_ROOT") != nullptr)
        return;
    std::error_code ignored;
    std::filesystem::create_directory(LECTORA_TEST_FOLDER "/test-homes", ignored);
    if (::mkdtemp(OwnFolder) == nullptr)
        std::abort();  // rather than in the user's own home
    Owner = ::getpid();
    ::setenv("LECTORA_ROOT", (std::string(OwnFolder) + "/root").c_str(), 1);
    ::setenv("HOME", (std::string(OwnFolder) + "/home").c_str(), 1);
    // Where tests move the root or the home of a running process, its stores' folders must stand
    // already.
    for (const char* const folder : {"/root/opt/quillon/lectora/etc", "/home/.quillon/lectora"})
        std::filesystem::create_directories(OwnFolder + std::string(folder), ignored);
}

[[gnu::destructor(101)]] void LeaveNothing() {
    std::error_code ignored;
    if (Owner == ::getpid())
        std::filesystem::remove_all(OwnFolder, ignored);
}

}  // namespace
