#include "foundation/threads/end_signals.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr int kEndSignals[] = {SIGTERM, SIGINT, SIGHUP};

bool IsIgnored(int number) {
    struct sigaction action = {};
    return ::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

sigset_t EndSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : kEndSignals) {
        if (!IsIgnored(number))
            sigaddset(&set, number);
    }
    return set;
}

bool IsEndSignalPending() {
    sigset_t pending;
    ::sigpending(&pending);
    // An ignored one is pending, too, while it is blocked.
    return std::any_of(std::begin(kEndSignals), std::end(kEndSignals), [&pending](int number) {
        return sigismember(&pending, number) == 1 && !IsIgnored(number);
    });
}

void EndBySignal(int number) {
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    ::sigaction(number, &action, nullptr);
    sigset_t own;
    sigemptyset(&own);
    sigaddset(&own, number);
    ::pthread_sigmask(SIG_UNBLOCK, &own, nullptr);
    ::raise(number);
}
