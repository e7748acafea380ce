#include "foundation/files/store_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <string_view>

#include "foundation/files/machine_root.h"

namespace {

constexpr int kFolder = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// Where the way to a store begins, and the steps from there.
struct Way {
    UniqueFd start;
    std::string_view steps;
    bool isMachines = false;
    uid_t administrator = 0;  // of a machine that stands in a folder: the folder's owner
};

bool TakePrefix(std::string_view& path, std::string prefix) {
    if (!prefix.ends_with('/'))
        prefix += '/';
    if (!path.starts_with(prefix))
        return false;
    path.remove_prefix(prefix.size());
    return true;
}

UniqueFd OpenStart(const std::string& folder) {
    // The start itself is where somebody has put it: /home may well be a link.
    return UniqueFd(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

Way WayTo(std::string_view path) {
    Way way;
    way.steps = path;
    struct stat root = {};
    // The machine's first: "/opt" stands for a home folder that is not told.
    if (TakePrefix(way.steps, MachinePath("/opt/quillon")) ||
        TakePrefix(way.steps, MachinePath("/etc/lectora"))) {
        way.steps = path.substr(MachinePath("/").size());
        way.start = OpenStart(MachinePath("/"));
        way.isMachines = true;
        if (!MachinePath("").empty() && ::fstat(way.start.Get(), &root) == 0)
            way.administrator = root.st_uid;
    } else if (TakePrefix(way.steps, HomeFolder())) {
        way.start = OpenStart(HomeFolder());
    } else {
        const std::size_t slash = path.rfind('/');
        way.start =
            OpenStart(slash == std::string_view::npos ? std::string(".")
                                                      : std::string(path.substr(0, slash + 1)));
        way.steps = path.substr(slash + 1);  // npos + 1 is the start
    }
    return way;
}

std::string TakeStep(std::string_view& steps) {
    const std::size_t end = steps.find('/');
    std::string step(steps.substr(0, end));
    steps.remove_prefix(end == std::string_view::npos ? steps.size() : end + 1);
    return step;
}

bool IsTrusted(const Way& way, int fd, struct stat& status) {
    return ::fstat(fd, &status) == 0 && (status.st_uid == 0 || status.st_uid == ::geteuid() ||
                                         status.st_uid == way.administrator);
}

UniqueFd OpenFolderStep(const Way& way, int parent, const char* name, bool make) {
    struct stat status = {};
    const bool isMade = make && ::mkdirat(parent, name, way.isMachines ? 0755 : 0777) == 0;
    UniqueFd folder(::openat(parent, name, kFolder));
    if (!folder.IsOpen() || !IsTrusted(way, folder.Get(), status))
        return UniqueFd();
    if (isMade && way.isMachines)
        ::fchmodat(parent, name, 0755, 0);
    return folder;
}

// The folder that holds the last step, which is left over.
UniqueFd OpenFolderOf(Way& way, bool make, std::string& name) {
    UniqueFd folder = std::move(way.start);
    for (name = TakeStep(way.steps); !way.steps.empty() && folder.IsOpen();
         name = TakeStep(way.steps))
        folder = OpenFolderStep(way, folder.Get(), name.c_str(), make);
    return folder;
}

}  // namespace

UniqueFd OpenStoreFile(const char* path, int flags, mode_t mode) {
    Way way = WayTo(path);
    std::string name;
    const UniqueFd folder = OpenFolderOf(way, (flags & O_CREAT) != 0, name);
    if (!folder.IsOpen() || name.empty())
        return UniqueFd();
    UniqueFd file(::openat(folder.Get(), name.c_str(),
                           flags | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY,
                           way.isMachines ? 0644 : mode));
    struct stat status = {};
    if (file.IsOpen() && (!IsTrusted(way, file.Get(), status) || !S_ISREG(status.st_mode)))
        return UniqueFd();
    // A mask that keeps new files from others would keep the administrator's defaults from them.
    if (file.IsOpen() && way.isMachines && (flags & O_CREAT) != 0 && status.st_size == 0)
        ::fchmod(file.Get(), 0644);
    return file;
}

bool MakeStoreFolder(const std::string& path) {
    Way way = WayTo(path);
    std::string name;
    const UniqueFd above = OpenFolderOf(way, true, name);
    return above.IsOpen() && !name.empty() &&
           OpenFolderStep(way, above.Get(), name.c_str(), true).IsOpen();
}

bool CouldOnlyRootWrite(const std::string& path) {
    Way way = WayTo(path);
    struct stat root = {};
    if (!way.isMachines || ::fstat(way.start.Get(), &root) != 0)
        return false;
    const auto isRoots = [&](const struct stat& status) {
        const bool isOthers = (status.st_mode & S_IWGRP) != 0 && status.st_gid != root.st_gid;
        return (status.st_uid == 0 || status.st_uid == way.administrator) && !isOthers &&
               (status.st_mode & S_IWOTH) == 0;
    };
    UniqueFd at = std::move(way.start);
    while (!way.steps.empty()) {
        const std::string step = TakeStep(way.steps);
        struct stat status = {};
        at = UniqueFd(::openat(at.Get(), step.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
        if (!at.IsOpen() || ::fstat(at.Get(), &status) != 0 || S_ISLNK(status.st_mode) ||
            !isRoots(status))
            return false;
    }
    return true;
}
