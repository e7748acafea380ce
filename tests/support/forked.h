// Second processes for tests: the same code in a child that never returns to the test program.
#pragma once

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <optional>

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

// Runs body in a child that is killed at its given system call; false when it ended before.
template <typename Body>
std::optional<bool> KilledAtCall(int call, Body body) {
    const pid_t child = StartForked([&] {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
            return 2;
        raise(SIGSTOP);
        body();
        return 0;
    });
    int status = 0;
    waitpid(child, &status, 0);
    for (int stop = 0; WIFSTOPPED(status) && stop < 2 * call; ++stop) {
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        waitpid(child, &status, 0);
    }
    if (WIFEXITED(status))
        return WEXITSTATUS(status) == 2 ? std::nullopt : std::optional(false);
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return true;
}
