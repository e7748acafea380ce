#include "foundation/files/file_io.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace {

// Calls read(done) until size bytes, the end of the file or an error.
template <typename Read>
std::size_t ReadAll(std::size_t size, int* error, Read read) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = read(done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0 && error != nullptr)
            *error = errno;
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

// Calls write(rest, done) until everything is out.
template <typename Write>
int WriteAll(std::string_view bytes, Write write) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t put = write(bytes.substr(done), done);
        if (put < 0 && errno == EINTR)
            continue;
        if (put < 0)
            return errno;
        if (put == 0)
            return ENOSPC;
        done += static_cast<std::size_t>(put);
    }
    return 0;
}

}  // namespace

UniqueFd OpenRegularFile(const char* path, int flags, mode_t mode) {
    UniqueFd fd(::open(path, flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, mode));
    struct stat status = {};
    if (fd.IsOpen() && (::fstat(fd.Get(), &status) != 0 || !S_ISREG(status.st_mode)))
        fd.Reset();
    return fd;
}

UniqueFd OpenFileForReading(const char* path) {
    UniqueFd fd = OpenRegularFile(path, O_RDONLY);
    if (fd.IsOpen())
        ::posix_fadvise(fd.Get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    return fd;
}

std::size_t ReadFully(int fd, void* buffer, std::size_t size, int* error) {
    return ReadAll(size, error, [&](std::size_t done) {
        return ::read(fd, static_cast<char*>(buffer) + done, size - done);
    });
}

std::size_t ReadFullyAt(int fd, void* buffer, std::size_t size, std::int64_t offset, int* error) {
    return ReadAll(size, error, [&](std::size_t done) {
        return ::pread(fd, static_cast<char*>(buffer) + done, size - done,
                       offset + static_cast<std::int64_t>(done));
    });
}

bool ReadWholeFile(int fd, std::size_t limit, std::string& text) {
    text.clear();
    struct stat status = {};
    if (::fstat(fd, &status) != 0 || status.st_size < 0 ||
        static_cast<std::size_t>(status.st_size) > limit)
        return false;
    text.resize(static_cast<std::size_t>(status.st_size));
    int error = 0;
    text.resize(ReadFullyAt(fd, text.data(), text.size(), 0, &error));
    if (error != 0)
        text.clear();
    return error == 0;
}

int WriteFully(int fd, std::string_view bytes) {
    return WriteAll(bytes, [&](std::string_view rest, std::size_t) {
        return ::write(fd, rest.data(), rest.size());
    });
}

int WriteFully(int fd, const void* data, std::size_t size) {
    return WriteFully(fd, std::string_view(static_cast<const char*>(data), size));
}

int WriteFullyAt(int fd, std::string_view bytes, std::int64_t offset) {
    return WriteAll(bytes, [&](std::string_view rest, std::size_t done) {
        return ::pwrite(fd, rest.data(), rest.size(), offset + static_cast<std::int64_t>(done));
    });
}

std::int64_t FileSize(int fd) {
    struct stat status = {};
    return ::fstat(fd, &status) == 0 ? status.st_size : 0;
}
