#include "tools/interruption.h"

#include <initializer_list>

#include "foundation/threads/end_signals.h"

namespace {

volatile sig_atomic_t gInterrupted = 0;

void Interrupt(int number) {
    gInterrupted = number;
}

}  // namespace

void CatchInterruptions() {
    const sigset_t end = EndSignals();
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        action.sa_handler = Interrupt;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        if (sigismember(&end, number) == 1)
            ::sigaction(number, &action, nullptr);
    }
    ::signal(SIGPIPE, SIG_IGN);
    ::signal(SIGXFSZ, SIG_IGN);
}

bool IsInterrupted() {
    return gInterrupted != 0;
}

int StatusOfRun(int status) {
    if (gInterrupted != 0)
        EndBySignal(gInterrupted);
    return status;
}
