#include "formats/file_io.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

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

int CloseFile(UniqueFd& file) {
    // An interrupted close has closed.
    return !file.IsOpen() || ::close(file.Release()) == 0 || errno == EINTR ? 0 : errno;
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
