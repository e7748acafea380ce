#include "foundation/files/publish_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "foundation/files/unique_fd.h"

namespace {

// A file system that cannot synchronise (EINVAL, EROFS) has done what it can.
int Synchronise(const char* path, int flags) {
    const UniqueFd file(::open(path, flags | O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen())
        return errno;
    return ::fsync(file.Get()) == 0 || errno == EINVAL || errno == EROFS ? 0 : errno;
}

int Name(const char* writtenPath, const char* finalPath, bool replace) {
    if (!replace) {
        // A link fails where there is a file; file systems without links fall back on renaming.
        if (::link(writtenPath, finalPath) == 0)
            return ::unlink(writtenPath) == 0 ? 0 : errno;
        if (errno == EEXIST)
            return EEXIST;
    }
    return std::rename(writtenPath, finalPath) == 0 ? 0 : errno;
}

}  // namespace

int PublishFile(const char* writtenPath, const char* finalPath, bool replace) {
    if (const int error = Synchronise(writtenPath, 0))
        return error;
    if (const int error = Name(writtenPath, finalPath, replace))
        return error;
    const std::string_view path(finalPath);
    const std::size_t slash = path.rfind('/');
    const std::string folder(slash == std::string_view::npos ? "." : path.substr(0, slash + 1));
    Synchronise(folder.c_str(), O_DIRECTORY);  // the file is there and whole, whatever this says
    return 0;
}
