#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <tuple>

#include "foundation/files/file.h"
#include "foundation/files/file_io.h"

namespace {

bool IsLockRefused(const char* path, int operation) {
    const UniqueFd file = OpenFileForReading(path);
    return file.IsOpen() && flock(file.Get(), operation | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

bool IsSameFile(int a, int b) {
    struct stat first = {};
    struct stat second = {};
    return fstat(a, &first) == 0 && fstat(b, &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

}  // namespace

bool LFile::CopyFile(const char* from, const char* to) {
    const UniqueFd source = OpenFileForReading(from);
    if (!source.IsOpen())
        return false;
    static_cast<void>(flock(source.Get(), LOCK_SH | LOCK_NB));
    const UniqueFd target = OpenRegularFile(to, O_RDWR | O_CREAT);
    if (!target.IsOpen())
        return false;
    if (IsSameFile(source.Get(), target.Get()))
        return true;  // emptying the target would empty the source
    static_cast<void>(flock(target.Get(), LOCK_EX | LOCK_NB));
    std::ignore = ftruncate(target.Get(), 0);
    char block[8192];
    for (;;) {
        const ssize_t got = read(source.Get(), block, sizeof block);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0 || WriteFully(target.Get(), block, static_cast<std::size_t>(got)) != 0)
            return true;
    }
}

bool LFile::TestFileShareReadBlocked(const char* path) {
    return IsLockRefused(path, LOCK_SH);
}

bool LFile::TestFileShareWriteBlocked(const char* path) {
    return IsLockRefused(path, LOCK_EX);
}
