#include "tools/interruption.h"

#include <signal.h>

#include <initializer_list>

namespace {

volatile sig_atomic_t gInterrupted = 0;

void Interrupt(int) {
    gInterrupted = 1;
}

}  // namespace

void CatchInterruptions() {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        ::sigaction(number, nullptr, &action);
        if (action.sa_handler == SIG_IGN)
            continue;  // as under nohup
        action = {};
        action.sa_handler = Interrupt;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        ::sigaction(number, &action, nullptr);
    }
    ::signal(SIGPIPE, SIG_IGN);
    ::signal(SIGXFSZ, SIG_IGN);
}

bool IsInterrupted() {
    return gInterrupted != 0;
}
