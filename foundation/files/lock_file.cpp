#include "foundation/files/lock_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <string_view>
#include <tuple>

#include "foundation/files/file.h"
#include "foundation/files/file_io.h"
#include "foundation/files/text_buffer.h"

namespace {

// False when the holder before removed the file between our open and our lock: the lock is then on
// a file that nobody else can find.
bool IsStillThere(int fd, const char* path) {
    struct stat opened = {};
    struct stat named = {};
    return fstat(fd, &opened) == 0 && stat(path, &named) == 0 && opened.st_dev == named.st_dev &&
           opened.st_ino == named.st_ino;
}

}  // namespace

bool LLockFile::Lock(const char* path) {
    Unlock();
    char lockPath[kTextBufferSize];
    LFile::_ApplyNewFileExtension(lockPath, path, ".lck");
    // A path without an extension names the lock file itself, and whatever else may stand there: a
    // lock holds nothing, so what holds something is left alone.
    const bool isLockName = std::string_view(lockPath).ends_with(".lck");
    for (;;) {
        const bool existed = access(lockPath, F_OK) == 0;
        UniqueFd file = OpenRegularFile(lockPath, O_RDWR | O_CREAT, 0777);
        if (!file.IsOpen() || (!isLockName && FileSize(file.Get()) > 0) ||
            flock(file.Get(), LOCK_EX | LOCK_NB) != 0)
            return false;
        if (!IsStillThere(file.Get(), lockPath))
            continue;
        std::ignore = ftruncate(file.Get(), 0);
        file_ = std::move(file);
        path_ = lockPath;
        isOurs_ = isLockName || !existed;
        return true;
    }
}

void LLockFile::Unlock() {
    if (!file_.IsOpen())
        return;
    if (isOurs_)
        unlink(path_.c_str());  // before the close: afterwards it might be another process's lock
    file_.Reset();
}
