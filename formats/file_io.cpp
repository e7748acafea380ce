#include "formats/file_io.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

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

}  // namespace

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

UniqueFd OpenFileForReading(const char* path) {
    UniqueFd file(::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat info;
    if (!file.IsOpen() || ::fstat(file.Get(), &info) != 0 || !S_ISREG(info.st_mode))
        return UniqueFd();
    ::posix_fadvise(file.Get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    return file;
}

UniqueFd OpenFileForWriting(const char* path, int* error) {
    *error = 0;
    UniqueFd file(::open(path, O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666));
    struct stat info;
    if (!file.IsOpen() || ::fstat(file.Get(), &info) != 0) {
        *error = errno;
        return UniqueFd();
    }
    if (!S_ISREG(info.st_mode) && !S_ISCHR(info.st_mode)) {
        *error = EINVAL;
        return UniqueFd();
    }
    (void)::flock(file.Get(), LOCK_SH | LOCK_NB);  // an unlocked file is written all the same
    return file;
}

int WriteFully(int fd, const void* data, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t put = ::write(fd, static_cast<const char*>(data) + done, size - done);
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

std::int64_t FileSize(int fd) {
    struct stat info;
    return ::fstat(fd, &info) == 0 ? info.st_size : 0;
}

HeaderReader::HeaderReader(UniqueFd file)
    : file_(std::move(file)), buffer_(std::make_unique<std::uint8_t[]>(kBufferSize)) {
    if (file_.IsOpen())
        size_ = FileSize(file_.Get());
}

bool HeaderReader::Read(void* out, std::size_t size) {
    auto* target = static_cast<std::uint8_t*>(out);
    std::int64_t at = position_;
    while (size > 0) {
        const std::int64_t end = bufferStart_ + static_cast<std::int64_t>(buffered_);
        if (at < bufferStart_ || at >= end) {
            buffered_ = ReadFullyAt(file_.Get(), buffer_.get(), kBufferSize, at);
            bufferStart_ = at;
            if (buffered_ == 0)
                return false;
            continue;
        }
        const std::size_t part = std::min(size, static_cast<std::size_t>(end - at));
        std::memcpy(target, buffer_.get() + (at - bufferStart_), part);
        target += part;
        at += static_cast<std::int64_t>(part);
        size -= part;
    }
    position_ = at;
    return true;
}

bool HeaderReader::Skip(std::int64_t bytes) {
    if (bytes < 0 || bytes > size_ - position_)
        return false;
    position_ += bytes;
    return true;
}

UniqueFd HeaderReader::Finish() {
    if (file_.IsOpen())
        ::lseek(file_.Get(), position_, SEEK_SET);
    return std::move(file_);
}
