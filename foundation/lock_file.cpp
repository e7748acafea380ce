#include "foundation/lock_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "foundation/file.h"
#include "foundation/file_io.h"
#include "foundation/text_buffer.h"

namespace {

// False when the holder before removed the file between our open and our lock: the lock is then on
// a file that nobody else can find.
bool IsStillThere(int fd, const char* path) {
    struct stat opened {};
    struct stat named {};
    return fstat(fd, &opened) == 0 && stat(path, &named) == 0 && opened.st_dev == named.st_dev &&
           opened.st_ino == named.st_ino;
}

}  // namespace

bool LLockFile::Lock(const char* path) {
    Unlock();
    char lockPath[kTextBufferSize];
    LFile::_ApplyNewFileExtension(lockPath, path, ".lck");
    for (;;) {
        UniqueFd file = OpenRegularFile(lockPath, O_RDWR | O_CREAT | O_TRUNC, 0777);
        if (!file.IsOpen() || flock(file.Get(), LOCK_EX | LOCK_NB) != 0)
            return false;
        if (IsStillThere(file.Get(), lockPath)) {
            file_ = std::move(file);
            path_ = lockPath;
            return true;
        }
    }
}

void LLockFile::Unlock() {
    if (!file_.IsOpen())
        return;
    unlink(path_.c_str());  // before the close: afterwards it might be another process's lock
    file_.Reset();
}
