#include "formats/whole_file.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <memory>

#include "foundation/file_mask.h"
#include "foundation/publish_file.h"
#include "foundation/unique_fd.h"

namespace {

// A link's target is what gets replaced, not the link.
std::string ResolveLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr),
                                                               &std::free);
    return resolved ? resolved.get() : path;
}

std::string TemporaryPattern(const std::string& path) {
    const std::size_t name = path.rfind('/') + 1;
    // Cut so that prefix and suffix still fit a file name.
    return path.substr(0, name) + "." + path.substr(name, NAME_MAX - 16) + ".XXXXXX";
}

}  // namespace

WholeFile::WholeFile(const std::string& path, Existing existing)
    : finalPath_(path), existing_(existing) {
    struct stat info;
    struct stat link;
    const bool exists = ::stat(path.c_str(), &info) == 0;
    const int error = errno;
    if (!exists && ::lstat(path.c_str(), &link) == 0) {
        problem_ = error == ENOENT ? "is a link to a file that does not exist" : strerror(error);
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
        MakeTemporary(exists ? &info : nullptr);
    }
}

void WholeFile::MakeTemporary(const struct stat* replaced) {
    writePath_ = TemporaryPattern(finalPath_);
    const UniqueFd file(::mkostemp(writePath_.data(), O_CLOEXEC));
    if (!file.IsOpen()) {
        problem_ = strerror(errno);
        return;
    }
    isTemporary_ = true;
    // mkostemp makes private files; this one is to be as open as any other new file, or as the one
    // that it replaces. Owner before mode: giving a file away clears bits of its mode.
    if (replaced != nullptr && ::fchown(file.Get(), replaced->st_uid, replaced->st_gid) != 0 &&
        errno != EPERM)
        problem_ = strerror(errno);
    ::fchmod(file.Get(), replaced != nullptr ? replaced->st_mode & 07777
                                             : 0666 & ~StartMask());
}

WholeFile::~WholeFile() {
    if (isTemporary_)
        ::unlink(writePath_.c_str());
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
