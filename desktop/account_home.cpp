#include "desktop/account_home.h"

#include <fcntl.h>
#include <grp.h>
#include <linux/openat2.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "foundation/files/file_io.h"
#include "foundation/processes/child_process.h"

namespace {

constexpr std::size_t kLargestText = std::size_t{64} << 10;

// Step by step, through no link at all.
UniqueFd OpenWithoutLinks(int folder, std::string_view path, int flags) {
    UniqueFd at(::fcntl(folder, F_DUPFD_CLOEXEC, 3));
    while (!path.empty() && at.IsOpen()) {
        const std::size_t end = path.find('/');
        const std::string step(path.substr(0, end));
        const bool isLast = end == std::string_view::npos;
        path.remove_prefix(isLast ? path.size() : end + 1);
        if (step == "..")
            return UniqueFd();
        at = UniqueFd(::openat(
            at.Get(), step.c_str(),
            (isLast ? flags : O_PATH | O_DIRECTORY) | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    }
    return at;
}

// Links within the folder are followed, as users have them who keep their settings elsewhere.
UniqueFd OpenBeneath(int folder, const std::string& path, int flags) {
    open_how how{};
    how.flags = static_cast<std::uint64_t>(flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
    const long fd = ::syscall(SYS_openat2, folder, path.c_str(), &how, sizeof how);
    // A kernel before 5.6, or a container that does not know the call.
    if (fd < 0 && (errno == ENOSYS || errno == EPERM))
        return OpenWithoutLinks(folder, path, flags);
    return UniqueFd(static_cast<int>(fd));
}

std::vector<gid_t> GroupsOf(const LUserAccount& account) {
    int count = 64;
    std::vector<gid_t> groups(static_cast<std::size_t>(count));
    if (::getgrouplist(account.name.c_str(), account.group, groups.data(), &count) < 0) {
        groups.resize(static_cast<std::size_t>(count));
        ::getgrouplist(account.name.c_str(), account.group, groups.data(), &count);
    }
    groups.resize(static_cast<std::size_t>(count));
    return groups;
}

bool Become(const LUserAccount& account, const std::vector<gid_t>& groups) {
    ::umask(022);
    return ::setgroups(groups.size(), groups.data()) == 0 &&
           ::setresgid(account.group, account.group, account.group) == 0 &&
           ::setresuid(account.user, account.user, account.user) == 0;
}

bool DoWork(const LUserAccount& account, const HomeWork& work) {
    const LHomeFolder home(account.home);
    return home.IsOpen() && work(home);
}

// The child: nothing of this process is left to it but the memory.
[[noreturn]] void WorkAs(const LUserAccount& account, const std::vector<gid_t>& groups,
                         const HomeWork& work, int answer) {
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    for (const int fault : {SIGILL, SIGUSR1, SIGSEGV})
        ::sigaction(fault, &action, nullptr);  // no crash box of another user's
    const char done = Become(account, groups) && DoWork(account, work) ? 1 : 0;
    static_cast<void>(!::write(answer, &done, 1));
    ::_exit(0);
}

bool WorkInChild(const LUserAccount& account, const HomeWork& work) {
    const std::vector<gid_t> groups = GroupsOf(account);
    LPipePair pipe = LPipePair::Make();
    if (!pipe.IsOpen())
        return false;
    const pid_t child = ::fork();
    if (child == 0)
        WorkAs(account, groups, work, pipe.writeEnd.Get());
    if (child < 0)
        return false;
    pipe.writeEnd.Reset();
    char done = 0;
    ReadFully(pipe.readEnd.Get(), &done, 1);
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    return done == 1;
}

}  // namespace

LHomeFolder::LHomeFolder(const std::string& path)
    : folder_(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {}

UniqueFd LHomeFolder::Open(const std::string& path, int flags) const {
    return OpenBeneath(folder_.Get(), path, flags);
}

UniqueFd LHomeFolder::OpenFolder(const std::string& path) const {
    return Open(path.empty() ? "." : path, O_RDONLY | O_DIRECTORY);
}

UniqueFd LHomeFolder::OpenFile(const std::string& path, int flags) const {
    UniqueFd file = Open(path, flags);
    struct stat status = {};
    if (file.IsOpen() && (::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)))
        file.Reset();
    return file;
}

std::string LHomeFolder::ReadText(const std::string& path) const {
    const UniqueFd file = OpenFile(path, O_RDONLY);
    std::string text;
    if (!file.IsOpen() || !ReadWholeFile(file.Get(), kLargestText, text))
        text.clear();
    return text;
}

bool PlaceFile(int folder, const char* name, std::string_view content, mode_t mode, bool replace) {
    const std::string written = std::string(".") + name + ".new";
    ::unlinkat(folder, written.c_str(), 0);
    const UniqueFd file(::openat(folder, written.c_str(),
                                 O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (!file.IsOpen())
        return false;
    // No mask makes an entry that others could change, or that its desktop could not read.
    bool isPlaced = WriteFully(file.Get(), content) == 0 && ::fchmod(file.Get(), mode) == 0 &&
                    ::fsync(file.Get()) == 0;
    if (isPlaced && replace)
        isPlaced = ::renameat(folder, written.c_str(), folder, name) == 0;
    else if (isPlaced)
        isPlaced = ::linkat(folder, written.c_str(), folder, name, 0) == 0;
    if (!isPlaced || !replace)
        ::unlinkat(folder, written.c_str(), 0);
    return isPlaced;
}

bool InHomeOf(const LUserAccount& account, const HomeWork& work) {
    struct stat status = {};
    if (account.home.empty() || account.user == kNoUser ||
        ::stat(account.home.c_str(), &status) != 0 || !S_ISDIR(status.st_mode))
        return false;
    if (account.user == ::geteuid())
        return DoWork(account, work);
    return ::geteuid() == 0 && WorkInChild(account, work);
}
