#include "foundation/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

constexpr int kFirstPrivateFd = 3;

class SpawnSetup {
public:
    SpawnSetup() {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawnattr_init(&attributes_);
        sigset_t signals;
        sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes_, &signals);
        sigfillset(&signals);
        ::posix_spawnattr_setsigdefault(&attributes_, &signals);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;
    ~SpawnSetup() {
        ::posix_spawnattr_destroy(&attributes_);
        ::posix_spawn_file_actions_destroy(&actions_);
    }

    bool Connect(const LChildStreams& streams) {
        const int group = streams.ownGroup ? POSIX_SPAWN_SETPGROUP : 0;
        int error = ::posix_spawnattr_setflags(
            &attributes_,
            static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | group));
        if (error != 0)
            return false;
        if (streams.emptyInput)
            error = ::posix_spawn_file_actions_addopen(&actions_, 0, "/dev/null", O_RDONLY, 0);
        else if (streams.input >= 0)
            error = ::posix_spawn_file_actions_adddup2(&actions_, streams.input, 0);
        if (error == 0 && streams.output >= 0)
            error = ::posix_spawn_file_actions_adddup2(&actions_, streams.output, 1);
        // Libraries open descriptors without close-on-exec (display connections, sound cards).
        if (error == 0)
            error = ::posix_spawn_file_actions_addclosefrom_np(&actions_, kFirstPrivateFd);
        return error == 0;
    }

    pid_t Spawn(const char* const* arguments) const {
        pid_t pid = -1;
        // posix_spawn takes the list as modifiable by convention only.
        char* const* list = const_cast<char* const*>(arguments);
        const int error = ::posix_spawn(&pid, arguments[0], &actions_, &attributes_, list, environ);
        return error == 0 ? pid : -1;
    }

private:
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
};

// A process started with descriptors 0 to 2 closed must not hand a pipe to its child as one of
// those by accident.
UniqueFd AwayFromStandard(int fd) {
    if (fd >= kFirstPrivateFd)
        return UniqueFd(fd);
    UniqueFd low(fd);
    return UniqueFd(::fcntl(fd, F_DUPFD_CLOEXEC, kFirstPrivateFd));
}

bool IsRunnableFile(const char* path) {
    struct stat status {};
    return ::stat(path, &status) == 0 && S_ISREG(status.st_mode) && ::access(path, X_OK) == 0;
}

}  // namespace

LChildProcess LChildProcess::Start(const char* const* arguments, const LChildStreams& streams) {
    SpawnSetup setup;
    if (!setup.Connect(streams))
        return LChildProcess();
    return LChildProcess(setup.Spawn(arguments));
}

LChildProcess LChildProcess::StartShell(const char* command, const LChildStreams& streams) {
    const char* const arguments[] = {"/bin/sh", "-c", command, nullptr};
    return Start(arguments, streams);
}

int LChildProcess::Wait() {
    if (pid_ <= 0)
        return -1;
    int status = 0;
    pid_t result;
    do {
        result = ::waitpid(pid_, &status, 0);
    } while (result < 0 && errno == EINTR);
    pid_ = -1;
    return result > 0 ? status : 0;
}

LPipePair LPipePair::Make() {
    LPipePair pair;
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return pair;
    pair.readEnd = AwayFromStandard(ends[0]);
    pair.writeEnd = AwayFromStandard(ends[1]);
    return pair;
}

int RunShellCommand(const char* command) {
    LChildStreams streams;
    streams.emptyInput = true;
    return LChildProcess::StartShell(command, streams).Wait();
}

bool IsProgramInstalled(const char* name) {
    const char* path = std::getenv("PATH");
    std::string_view rest = path ? path : "/usr/bin:/bin";
    while (!rest.empty()) {
        const std::size_t colon = rest.find(':');
        const std::string file = std::string(rest.substr(0, colon)) + '/' + name;
        if (colon != 0 && IsRunnableFile(file.c_str()))
            return true;
        if (colon == std::string_view::npos)
            return false;
        rest.remove_prefix(colon + 1);
    }
    return false;
}
