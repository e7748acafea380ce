// Thin readers and writers over a file descriptor.
//
// The Ref classes borrow the descriptor and are passed by value; LReadWriteFile likewise.
// LSharedReadFile owns its own. Short reads and interrupted calls are carried on; results are byte
// counts or bools, no other errors. One thread each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "foundation/files/unique_fd.h"

constexpr std::size_t kLengthStringBufferSize =
    520;  // a length-prefixed string keeps at most 519 bytes

class LReadFileRef {
public:
    LReadFileRef() = default;
    explicit LReadFileRef(int fd) : fd_(fd) {}

    int Fd() const { return fd_; }  // -1 when not open
    bool IsOpen() const { return fd_ >= 0; }

    // Bytes read: fewer than count only at the end of the file or on an error.
    std::size_t Read(void* buffer, std::size_t count);
    bool Seek(std::int64_t offset);  // from the start; not past the end of the file
    bool Skip(std::int64_t bytes);   // from here; likewise
    std::int64_t Tell() const;       // -1 when not seekable
    std::int64_t GetSize() const;    // -1 when not a file

    // One line without its end: CR, LF, CR LF or LF CR. Bytes past size - 1 are dropped. False only
    // when the file had ended already. Reads byte by byte, so that the position stays exact.
    // Seekable files only: it looks one byte past a line end.
    bool ReadLine(char* out, std::size_t size);
    // length bytes as text; out holds length + 1. False when the file ends before.
    bool ReadStringUTF8(char* out, std::size_t length);
    // A length (one byte below 255, or 255 and 32 bits little-endian) and that many bytes, of which
    // 519 are kept.
    bool ReadStringLenUTF8(char (&out)[kLengthStringBufferSize]);

protected:
    int fd_ = -1;
};

class LWriteFileRef {
public:
    LWriteFileRef() = default;
    explicit LWriteFileRef(int fd) : fd_(fd) {}

    int Fd() const { return fd_; }
    bool IsOpen() const { return fd_ >= 0; }

    // All true only when every byte was written.
    bool Write(const void* bytes, std::size_t count);
    bool WriteString(const char* text);
    bool WriteStringUTF8(const char* text) { return WriteString(text); }
    bool WriteLineCRLF(const char* text);
    bool WriteLineLF(const char* text);
    bool WriteStringLenUTF8(const char* text);

private:
    int fd_ = -1;
};

// printf rules; characters written or -1.
[[gnu::format(printf, 2, 3)]] int fprintf(LWriteFileRef file, const char* format, ...);

class LReadWriteFile : public LReadFileRef {
public:
    LReadWriteFile() = default;
    explicit LReadWriteFile(int fd) : LReadFileRef(fd) {}
    LWriteFileRef Writer() const { return LWriteFileRef(fd_); }
    bool Write(const void* bytes, std::size_t count) { return Writer().Write(bytes, count); }
};

// Reads ahead: the descriptor's own position means nothing while it is in use.
class LReadFileBuffered {
public:
    explicit LReadFileBuffered(int fd) : file_(fd) {}

    std::size_t Read(void* buffer, std::size_t count);
    bool ReadLine(char* out, std::size_t size);  // the rules of LReadFileRef::ReadLine

private:
    int NextByte();  // -1 at the end
    bool Refill();

    LReadFileRef file_;
    std::size_t position_ = 0;
    std::size_t valid_ = 0;
    char buffer_[8192];
};

// A regular file opened for reading under a shared lock (one try, its outcome ignored). Not open
// when the path is anything else.
class LSharedReadFile : public LReadFileRef {
public:
    LSharedReadFile() = default;
    explicit LSharedReadFile(const char* path) { Open(path); }
    explicit LSharedReadFile(UniqueFd fd) : LReadFileRef(fd.Get()), owner_(std::move(fd)) {}
    LSharedReadFile(LSharedReadFile&& other) noexcept
        : LReadFileRef(std::exchange(other.fd_, -1)), owner_(std::move(other.owner_)) {}
    LSharedReadFile& operator=(LSharedReadFile&& other) noexcept {
        owner_ = std::move(other.owner_);
        fd_ = owner_.Get();
        if (this != &other)
            other.fd_ = -1;
        return *this;
    }

    bool Open(const char* path);
    void Close();
    UniqueFd Release();  // hands the descriptor on; this one is not open any more

private:
    UniqueFd owner_;
};
