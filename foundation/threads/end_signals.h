// SIGTERM, SIGINT and SIGHUP: another program, Ctrl+C, or the end of the session or the terminal
// asks this process to end.
#pragma once

#include <signal.h>

// Without those that were ignored when the program was started, as under nohup: they stay ignored.
sigset_t EndSignals();

// For a thread that blocks them: whether one has come. It stays pending.
bool IsEndSignalPending();

// Ends the process by the default action of any signal, whatever handler or mask of this thread
// stands in the way: the last act of a process that has tidied up. Shells then see the status
// 128 + n and end the script that Ctrl+C was meant for, too; service managers take it for a clean
// end, as they do not take an exit with that status. Async-signal-safe.
void EndBySignal(int number);
