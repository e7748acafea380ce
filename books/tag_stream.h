// A file whose tags are written. The library's own stream tells nobody that a write has failed.
#pragma once

#include <taglib/taglib.h>
#include <taglib/tiostream.h>

#include <string>

#include "foundation/files/unique_fd.h"

// Since version 2 of the library places in a file have a sign.
#if TAGLIB_MAJOR_VERSION < 2
using TagPlace = unsigned long;
#else
using TagPlace = TagLib::offset_t;
#endif

// One thread. After a failed write or read nothing more is written.
class TagStream final : public TagLib::IOStream {
public:
    explicit TagStream(const std::string& path);

    int Error() const { return error_; }  // errno of the first one; 0: none

    TagLib::FileName name() const override { return path_.c_str(); }
    TagLib::ByteVector readBlock(unsigned long length) override;
    void writeBlock(const TagLib::ByteVector& data) override;
    void insert(const TagLib::ByteVector& data, TagPlace start, unsigned long replace) override;
    void removeBlock(TagPlace start, unsigned long length) override;
    bool readOnly() const override { return false; }
    bool isOpen() const override { return file_.IsOpen(); }
    void seek(long offset, Position from) override;
    long tell() const override { return at_; }
    long length() override;
    void truncate(long length) override;

private:
    void Move(long from, long to, long bytes);

    std::string path_;
    UniqueFd file_;
    long at_ = 0;
    int error_ = 0;
};
