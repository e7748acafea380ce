#include "foundation/crash/crash_handler.h"

#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <new>

#include "foundation/crash/crash_box_program.h"
#include "foundation/threads/end_signals.h"
#include "foundation/threads/signal_stack.h"

std::atomic<std::uint8_t> bLLibExceptionAlreadyTrapped{0};
static_assert(std::atomic<std::uint8_t>::is_always_lock_free, "used in a signal handler");

namespace {

std::atomic<pid_t> gTrappedThread{0};
std::atomic<pid_t> gDisplayThread{0};
std::atomic<int> gDisplayConnection{-1};

// Copied before main(): the thread that faults may be in the middle of changing the environment.
char** gEnvironment = nullptr;

void CopyEnvironment() {
    std::size_t count = 0;
    while (environ[count])
        ++count;
    gEnvironment = static_cast<char**>(std::calloc(count + 1, sizeof(char*)));
    for (std::size_t i = 0; gEnvironment && i < count; ++i)
        gEnvironment[i] = ::strdup(environ[i]);
}

void SetDisposition(int number, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    ::sigaction(number, &action, nullptr);
}

// The child between fork and exec: a process like any other, not a crashed player thread.
[[noreturn]] void BecomeCrashBox(const char* number) {
    for (int other = 1; other < NSIG; ++other)
        SetDisposition(other, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    const sched_param normal{};
    ::sched_setscheduler(0, SCHED_OTHER, &normal);
    ::setpriority(PRIO_PROCESS, 0, 0);
    if (::close_range(3, ~0U, 0) != 0) {
        for (int fd = 3; fd < 1024; ++fd)  // a kernel before 5.9
            ::close(fd);
    }
    char name[] = "lectora-crash-box";
    char option[] = "--signal";
    char digits[4] = {};
    std::memcpy(digits, number, sizeof digits - 1);
    char* const arguments[] = {name, option, digits, nullptr};
    char* const noEnvironment[] = {nullptr};
    ::execve(CrashBoxProgram(), arguments, gEnvironment ? gEnvironment : noEnvironment);
    ::_exit(127);
}

void RunCrashBox(int signal) {
    const auto digit = [](int value) { return static_cast<char>('0' + value % 10); };
    char number[4] = {digit(signal / 10), digit(signal), '\0', '\0'};
    if (signal < 10)
        number[0] = digit(signal), number[1] = '\0';
    const pid_t box = ::_Fork();  // unlike fork() it takes no lock
    if (box == 0)
        BecomeCrashBox(number);
    if (box < 0)
        return;
    while (::waitpid(box, nullptr, 0) < 0 && errno == EINTR) {
    }
}

struct Arming {
    Arming() {
        CopyEnvironment();
        for (const int number : {SIGILL, SIGUSR1, SIGSEGV})
            SetDisposition(number, &LDebugSignalHandler);
        // Never taken down: the process may fault until its last instruction.
        alignas(LSignalStack) static std::byte stack[sizeof(LSignalStack)];
        new (stack) LSignalStack;
    }
};
static_assert(SIGILL == 4 && SIGUSR1 == 10 && SIGSEGV == 11);
const Arming gArming;

}  // namespace

void LDebugSignalHandler(int signal) {
    // The disposition stays as it is meanwhile: a thread that faults with the same signal would end
    // the process at once, before the box is up. This thread has the signal blocked here.
    const pid_t self = ::gettid();
    if (bLLibExceptionAlreadyTrapped.exchange(1) == 0) {
        gTrappedThread = self;
        if (gDisplayThread == self)
            ::shutdown(gDisplayConnection, SHUT_RDWR);
        RunCrashBox(signal);
    } else if (gTrappedThread != self) {
        for (;;)
            ::pause();  // the thread before ends the process once the user has answered
    }
    EndBySignal(signal);
}

void LDebugShutDownOnFault(int displayConnection) {
    gDisplayConnection = displayConnection;
    gDisplayThread = ::gettid();
}

void LDebugBlockSignals() {
    sigset_t blocked;
    sigfillset(&blocked);
    for (const int fault : {SIGILL, SIGSEGV, SIGBUS, SIGFPE, SIGTRAP, SIGSYS})
        sigdelset(&blocked, fault);
    ::pthread_sigmask(SIG_SETMASK, &blocked, nullptr);
}
