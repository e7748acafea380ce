#include "foundation/files/file_readers.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <string>

#include "foundation/files/file_io.h"

namespace {

constexpr unsigned char kLongLengthFollows = 255;

// The line rules, over anything that gives bytes and can take the last one back.
template <typename NextByte, typename TakeBack>
bool ReadLineFrom(NextByte nextByte, TakeBack takeBack, char* out, std::size_t size) {
    std::size_t length = 0;
    int c = nextByte();
    const bool any = c >= 0;
    while (c >= 0 && c != '\r' && c != '\n') {
        if (length + 1 < size)
            out[length++] = static_cast<char>(c);
        c = nextByte();
    }
    if (size > 0)
        out[length] = '\0';
    if (c >= 0) {
        const int second = nextByte();
        // CR LF and LF CR are one line end, CR CR is two.
        if (second >= 0 && second != (c == '\r' ? '\n' : '\r'))
            takeBack();
    }
    return any;
}

}  // namespace

std::size_t LReadFileRef::Read(void* buffer, std::size_t count) {
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got = read(fd_, static_cast<char*>(buffer) + done, count - done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

bool LReadFileRef::Seek(std::int64_t offset) {
    return offset >= 0 && offset <= GetSize() && lseek(fd_, offset, SEEK_SET) == offset;
}

bool LReadFileRef::Skip(std::int64_t bytes) {
    const std::int64_t here = Tell();
    return here >= 0 && bytes <= INT64_MAX - here && Seek(here + bytes);
}

std::int64_t LReadFileRef::Tell() const {
    return lseek(fd_, 0, SEEK_CUR);
}

std::int64_t LReadFileRef::GetSize() const {
    struct stat status = {};
    return fstat(fd_, &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : -1;
}

bool LReadFileRef::ReadLine(char* out, std::size_t size) {
    const auto nextByte = [this] {
        unsigned char c;
        return Read(&c, 1) == 1 ? static_cast<int>(c) : -1;
    };
    const auto stepBack = [this] { lseek(fd_, -1, SEEK_CUR); };
    return ReadLineFrom(nextByte, stepBack, out, size);
}

bool LReadFileRef::ReadStringUTF8(char* out, std::size_t length) {
    const std::size_t got = Read(out, length);
    out[got] = '\0';
    return got == length;
}

bool LReadFileRef::ReadStringLenUTF8(char (&out)[kLengthStringBufferSize]) {
    out[0] = '\0';
    unsigned char head[5];
    if (Read(head, 1) != 1)
        return false;
    std::uint32_t length = head[0];
    if (length == kLongLengthFollows) {
        if (Read(head + 1, 4) != 4)
            return false;
        length = head[1] | static_cast<std::uint32_t>(head[2]) << 8 |
                 static_cast<std::uint32_t>(head[3]) << 16 |
                 static_cast<std::uint32_t>(head[4]) << 24;
    }
    const std::size_t kept = std::min<std::size_t>(length, kLengthStringBufferSize - 1);
    return ReadStringUTF8(out, kept) &&
           (kept == length || Skip(std::int64_t{length} - static_cast<std::int64_t>(kept)));
}

bool LWriteFileRef::Write(const void* bytes, std::size_t count) {
    return WriteFully(fd_, bytes, count) == 0;
}

bool LWriteFileRef::WriteString(const char* text) {
    return WriteFully(fd_, text) == 0;
}

bool LWriteFileRef::WriteLineCRLF(const char* text) {
    return WriteFully(fd_, std::string(text) + "\r\n") == 0;
}

bool LWriteFileRef::WriteLineLF(const char* text) {
    return WriteFully(fd_, std::string(text) + "\n") == 0;
}

bool LWriteFileRef::WriteStringLenUTF8(const char* text) {
    const std::size_t length = std::strlen(text);
    if (length > UINT32_MAX)
        return false;
    std::string bytes;
    if (length < kLongLengthFollows) {
        bytes += static_cast<char>(length);
    } else {
        bytes += static_cast<char>(kLongLengthFollows);
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(length >> shift & 255);
    }
    return WriteFully(fd_, bytes.append(text)) == 0;
}

int fprintf(LWriteFileRef file, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    if (length > 0)
        std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return length >= 0 && WriteFully(file.Fd(), text) == 0 ? length : -1;
}

bool LReadFileBuffered::Refill() {
    position_ = 0;
    valid_ = 0;
    for (;;) {
        const ssize_t got = read(file_.Fd(), buffer_, sizeof buffer_);
        if (got < 0 && errno == EINTR)
            continue;
        valid_ = got > 0 ? static_cast<std::size_t>(got) : 0;
        return valid_ > 0;
    }
}

int LReadFileBuffered::NextByte() {
    if (position_ == valid_ && !Refill())
        return -1;
    return static_cast<unsigned char>(buffer_[position_++]);
}

std::size_t LReadFileBuffered::Read(void* buffer, std::size_t count) {
    std::size_t done = 0;
    while (done < count && (position_ < valid_ || Refill())) {
        const std::size_t piece = std::min(count - done, valid_ - position_);
        std::memcpy(static_cast<char*>(buffer) + done, buffer_ + position_, piece);
        position_ += piece;
        done += piece;
    }
    return done;
}

bool LReadFileBuffered::ReadLine(char* out, std::size_t size) {
    return ReadLineFrom([this] { return NextByte(); }, [this] { --position_; }, out, size);
}

bool LSharedReadFile::Open(const char* path) {
    owner_ = OpenFileForReading(path);
    fd_ = owner_.Get();
    if (fd_ >= 0)
        static_cast<void>(flock(fd_, LOCK_SH | LOCK_NB));
    return fd_ >= 0;
}

void LSharedReadFile::Close() {
    owner_.Reset();
    fd_ = -1;
}

UniqueFd LSharedReadFile::Release() {
    fd_ = -1;
    return std::move(owner_);
}
