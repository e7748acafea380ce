#include "books/tag_stream.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

#include "foundation/files/file_io.h"

TagStream::TagStream(const std::string& path)
    : path_(path), file_(OpenRegularFile(path.c_str(), O_RDWR)) {
    if (!file_.IsOpen())
        error_ = errno;
}

TagLib::ByteVector TagStream::readBlock(unsigned long length) {
    const long left = std::max(TagStream::length() - at_, 0L);
    TagLib::ByteVector block(
        static_cast<unsigned int>(std::min(length, static_cast<unsigned long>(left))), '\0');
    int error = 0;
    const std::size_t got = ReadFullyAt(file_.Get(), block.data(), block.size(), at_, &error);
    error_ = error_ != 0 ? error_ : error;
    block.resize(static_cast<unsigned int>(got));
    at_ += static_cast<long>(got);
    return block;
}

void TagStream::writeBlock(const TagLib::ByteVector& data) {
    if (error_ == 0)
        error_ = WriteFullyAt(file_.Get(), {data.data(), data.size()}, at_);
    at_ += static_cast<long>(data.size());
}

void TagStream::insert(const TagLib::ByteVector& data, TagPlace place, unsigned long replace) {
    const auto start = static_cast<long>(place);
    const long from = start + static_cast<long>(replace);
    const long to = start + static_cast<long>(data.size());
    const long whole = length();
    Move(from, to, std::max(whole - from, 0L));
    if (to < from)
        truncate(whole - (from - to));
    seek(start, Beginning);
    writeBlock(data);
}

void TagStream::removeBlock(TagPlace start, unsigned long length) {
    insert({}, start, length);
}

// The parts that would overwrite others go last.
void TagStream::Move(long from, long to, long bytes) {
    constexpr long kBlock = 65536;
    for (long done = 0; from != to && done < bytes && error_ == 0;) {
        const long part = std::min(kBlock, bytes - done);
        const long at = to > from ? bytes - done - part : done;
        seek(from + at, Beginning);
        const TagLib::ByteVector block = readBlock(static_cast<unsigned long>(part));
        if (error_ == 0 && static_cast<long>(block.size()) != part)
            error_ = EIO;
        seek(to + at, Beginning);
        writeBlock(block);
        done += part;
    }
}

void TagStream::seek(long offset, Position from) {
    at_ = offset + (from == Current ? at_ : from == End ? length() : 0);
}

long TagStream::length() {
    return static_cast<long>(FileSize(file_.Get()));
}

void TagStream::truncate(long length) {
    if (error_ == 0 && ::ftruncate(file_.Get(), length) != 0)
        error_ = errno;
}
