#include "formats/whole_file.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <memory>
#include <mutex>
#include <set>
#include <string_view>

#include "foundation/files/file_mask.h"
#include "foundation/files/folder_iterator.h"
#include "foundation/files/publish_file.h"

namespace {

// A link's target is what gets replaced, not the link.
std::string ResolveLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr),
                                                               &std::free);
    return resolved ? resolved.get() : path;
}

// ".NAME.lectora-XXXXXX": nobody else's temporary files are called so.
constexpr std::string_view kMark = ".lectora-";
constexpr std::string_view kRandom = "XXXXXX";

std::string TemporaryPattern(const std::string& path) {
    const std::size_t name = path.rfind('/') + 1;
    // Cut so that prefix and suffix still fit a file name.
    return path.substr(0, name) + "." + path.substr(name, NAME_MAX - 24) + std::string(kMark) +
           std::string(kRandom);
}

// The lock goes with the process, however it ends. Not the kind that writers of the file take.
bool HoldFile(int fd) {
    struct flock all = {};
    all.l_type = F_WRLCK;
    all.l_whence = SEEK_SET;
    return ::fcntl(fd, F_OFD_SETLK, &all) == 0;
}

// The last six letters of the path become its own. Another process may take it for an unfinished
// one before it is locked; then it is made anew. Where nothing can be locked, nothing is removed.
UniqueFd OpenTemporary(std::string& path) {
    for (;;) {
        path.replace(path.size() - kRandom.size(), kRandom.size(), kRandom);
        UniqueFd file(::mkostemp(path.data(), O_CLOEXEC));
        struct stat status = {};
        if (!file.IsOpen() || !HoldFile(file.Get()) || ::fstat(file.Get(), &status) != 0 ||
            status.st_nlink > 0)
            return file;
    }
}

void RemoveWhenUnused(const std::string& path) {
    const UniqueFd file(::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (file.IsOpen() && ::fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode) &&
        status.st_uid == ::geteuid() && HoldFile(file.Get()))
        ::unlink(path.c_str());
}

// The temporary files of this process. A lost display ends it by exit() with none of its objects
// destroyed.
class TemporaryFiles {
public:
    static TemporaryFiles& Get() {
        // Never destroyed: threads may go on until the process is gone.
        static TemporaryFiles* const all = [] {
            std::atexit([] { Get().RemoveAll(); });
            return new TemporaryFiles;
        }();
        return *all;
    }
    void Add(const std::string& path) {
        const std::lock_guard lock(mutex_);
        paths_.insert(path);
    }
    void Remove(const std::string& path) {
        const std::lock_guard lock(mutex_);
        ::unlink(path.c_str());
        paths_.erase(path);
    }

private:
    void RemoveAll() {
        const std::lock_guard lock(mutex_);
        for (const std::string& path : paths_)
            ::unlink(path.c_str());
    }

    std::mutex mutex_;
    std::set<std::string> paths_;
};

}  // namespace

WholeFile::WholeFile(const std::string& path, Existing existing, Unfinished unfinished)
    : finalPath_(path), existing_(existing) {
    struct stat info;
    struct stat link;
    const bool exists = ::stat(path.c_str(), &info) == 0;
    const int error = errno;
    if (!exists && ::lstat(path.c_str(), &link) == 0) {
        problem_ = error == ENOENT ? "is a link to a file that does not exist" : strerror(error);
    } else if (!exists && error == ENAMETOOLONG) {
        problem_ = strerror(error);  // the temporary name, which is cut, would hide it
    } else if (exists && S_ISDIR(info.st_mode)) {
        problem_ = "is a folder";
    } else if (exists && existing == Existing::kRefuse) {
        problem_ = kExists;
    } else if (exists && !S_ISREG(info.st_mode)) {
        isDevice_ = true;
        writePath_ = path;
        if (!S_ISCHR(info.st_mode))
            problem_ = "is not a regular file";
    } else if (exists && ::access(path.c_str(), W_OK) != 0) {
        problem_ = strerror(errno);
    } else {
        if (exists)
            finalPath_ = ResolveLinks(path);
        MakeTemporary(exists ? &info : nullptr, unfinished);
    }
}

void WholeFile::MakeTemporary(const struct stat* replaced, Unfinished unfinished) {
    writePath_ = TemporaryPattern(finalPath_);
    if (unfinished == Unfinished::kRemove)
        RemoveUnfinishedFiles(writePath_.substr(0, writePath_.rfind('/') + 1));
    held_ = OpenTemporary(writePath_);
    const UniqueFd& file = held_;
    if (!file.IsOpen()) {
        problem_ = strerror(errno);
        return;
    }
    TemporaryFiles::Get().Add(writePath_);
    isTemporary_ = true;
    // mkostemp makes private files; this one is to be as open as any other new file, or as the one
    // that it replaces. Owner before mode: giving a file away clears bits of its mode.
    if (replaced != nullptr && ::fchown(file.Get(), replaced->st_uid, replaced->st_gid) != 0 &&
        errno != EPERM)
        problem_ = strerror(errno);
    ::fchmod(file.Get(), replaced != nullptr ? replaced->st_mode & 07777 : 0666 & ~StartMask());
}

WholeFile::~WholeFile() {
    if (isTemporary_)
        TemporaryFiles::Get().Remove(writePath_);
}

long long WholeFile::Size() const {
    struct stat info;
    return ::stat(writePath_.c_str(), &info) == 0 ? static_cast<long long>(info.st_size) : -1;
}

std::string WholeFile::Commit() {
    if (isDevice_)
        return "";
    const int error =
        PublishFile(writePath_.c_str(), finalPath_.c_str(), existing_ == Existing::kReplace);
    if (error == EEXIST)
        return kExists;
    return error != 0 ? strerror(error) : "";
}

void RemoveUnfinishedFiles(const std::string& folder) {
    LFile::FolderIterator names;
    if (!names.Open(folder.empty() ? "." : folder.c_str(), ".*.lectora-??????"))
        return;
    while (names.SkipToMatch())
        RemoveWhenUnused(names.Path());
}
