#include "tools/output_file.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string_view>

#include "foundation/file_mask.h"
#include "foundation/publish_file.h"
#include "foundation/unique_fd.h"
#include "tools/tool_texts.h"

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

OutputFile::OutputFile(const std::string& path, bool overwrite)
    : finalPath_(path), overwrite_(overwrite) {
    struct stat info;
    const bool exists = ::stat(path.c_str(), &info) == 0;
    if (exists && S_ISDIR(info.st_mode)) {
        error_ = "is a folder";
        return;
    }
    if (exists && !overwrite) {
        error_ = "exists already (-f overwrites it)";
        return;
    }
    if (exists)
        finalPath_ = ResolveLinks(path);
    if (exists && !S_ISREG(info.st_mode)) {
        isDevice_ = true;
        writePath_ = finalPath_;
        if (!S_ISCHR(info.st_mode))
            error_ = "is not a regular file";
        return;
    }
    if (exists && ::access(finalPath_.c_str(), W_OK) != 0) {
        error_ = ErrorText(errno);
        return;
    }
    writePath_ = TemporaryPattern(finalPath_);
    const UniqueFd file(::mkostemp(writePath_.data(), O_CLOEXEC));
    if (!file.IsOpen()) {
        error_ = ErrorText(errno);
        return;
    }
    isTemporary_ = true;
    // mkostemp makes private files; the output is as open as any other new file, or as the one it
    // replaces.
    ::fchmod(file.Get(), exists ? info.st_mode & 07777 : CreationMode(finalPath_.c_str(), 0666));
}

OutputFile::~OutputFile() {
    if (isTemporary_)
        ::unlink(writePath_.c_str());
}

long long OutputFile::Size() const {
    struct stat info;
    return ::stat(writePath_.c_str(), &info) == 0 ? static_cast<long long>(info.st_size) : -1;
}

std::string OutputFile::Commit() {
    if (isDevice_)
        return "";
    if (const int error = PublishFile(writePath_.c_str(), finalPath_.c_str(), overwrite_))
        return error == EEXIST ? "exists already (-f overwrites it)" : ErrorText(error);
    isTemporary_ = false;
    return "";
}
