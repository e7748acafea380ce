// Second processes for tests: the same code in a child that never returns to the test program.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

// Runs body in a child; its return value is the exit status.
template <typename Body>
pid_t StartForked(Body body) {
    const pid_t pid = fork();
    if (pid == 0)
        _exit(body());
    return pid;
}

// Exit status of the child; -1 when a signal ended it.
inline int WaitForked(pid_t pid) {
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

template <typename Body>
int RunForked(Body body) {
    return WaitForked(StartForked(body));
}
