// What sound files need beyond the common file steps: an opener for writing, byte order, and a
// walker over headers. Nothing here reports through messages.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/files/file_io.h"

// Opens or creates (mode 0666 less the mask of the start) a file for reading and writing, without
// truncating it, and takes a shared advisory lock that is not waited for. Not open on failure,
// *error then holds the errno; FIFOs and sockets are refused.
UniqueFd OpenFileForWriting(const char* path, int* error);

// Closes it; returns 0, or the errno of what was written before and is lost.
int CloseFile(UniqueFd& file);

inline std::uint16_t LoadLE16(const std::uint8_t* p) {
    return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}
inline std::uint32_t LoadLE32(const std::uint8_t* p) {
    return LoadLE16(p) | static_cast<std::uint32_t>(LoadLE16(p + 2)) << 16;
}
inline std::uint16_t LoadBE16(const std::uint8_t* p) {
    return static_cast<std::uint16_t>(p[0] << 8 | p[1]);
}
inline std::uint32_t LoadBE32(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(LoadBE16(p)) << 16 | LoadBE16(p + 2);
}
inline void StoreLE16(std::uint8_t* p, std::uint32_t value) {
    p[0] = static_cast<std::uint8_t>(value);
    p[1] = static_cast<std::uint8_t>(value >> 8);
}
inline void StoreLE32(std::uint8_t* p, std::uint32_t value) {
    StoreLE16(p, value);
    StoreLE16(p + 2, value >> 16);
}
inline void StoreBE16(std::uint8_t* p, std::uint32_t value) {
    p[0] = static_cast<std::uint8_t>(value >> 8);
    p[1] = static_cast<std::uint8_t>(value);
}
inline void StoreBE32(std::uint8_t* p, std::uint32_t value) {
    StoreBE16(p, value >> 16);
    StoreBE16(p + 2, value);
}

// Chunk identifiers and magic numbers: four characters without a terminator.
inline void StoreId(std::uint8_t* p, const char (&id)[5]) {
    for (int i = 0; i < 4; ++i)
        p[i] = static_cast<std::uint8_t>(id[i]);
}

// Walks a header through a small buffer of its own, so that a file of millions of empty chunks is
// crossed in a few reads. Leaves the descriptor's own position alone until Finish.
class HeaderReader {
public:
    explicit HeaderReader(UniqueFd file);

    bool IsOpen() const { return file_.IsOpen(); }
    // Copies the next size bytes; false, with nothing consumed, when the file holds fewer.
    bool Read(void* out, std::size_t size);
    // False, with nothing skipped, when that would pass the end of the file.
    bool Skip(std::int64_t bytes);
    std::int64_t Position() const { return position_; }
    // Places the descriptor at the position reached and hands it over.
    UniqueFd Finish();

private:
    static constexpr std::size_t kBufferSize = 4096;

    UniqueFd file_;
    std::int64_t size_ = 0;
    std::int64_t position_ = 0;
    std::int64_t bufferStart_ = 0;
    std::size_t buffered_ = 0;
    std::unique_ptr<std::uint8_t[]> buffer_;
};
