#include "foundation/file_io.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

UniqueFd OpenRegularFile(const char* path, int flags, mode_t mode) {
    UniqueFd fd(open(path, flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, mode));
    struct stat status {};
    if (fd.IsOpen() && (fstat(fd.Get(), &status) != 0 || !S_ISREG(status.st_mode)))
        fd.Reset();
    return fd;
}

bool ReadWholeFile(int fd, std::size_t limit, std::string& text) {
    text.clear();
    struct stat status {};
    if (fstat(fd, &status) != 0 || status.st_size < 0 ||
        static_cast<std::size_t>(status.st_size) > limit)
        return false;
    text.resize(static_cast<std::size_t>(status.st_size));
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t got = pread(fd, &text[done], text.size() - done, static_cast<off_t>(done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0) {
            text.clear();
            return false;
        }
        if (got == 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    text.resize(done);
    return true;
}

bool WriteAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool WriteAllAt(int fd, std::string_view bytes, off_t offset) {
    while (!bytes.empty()) {
        const ssize_t written = pwrite(fd, bytes.data(), bytes.size(), offset);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
        offset += written;
    }
    return true;
}
