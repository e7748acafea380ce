// A ZIP file of parts as they are, not compressed: what stands in books is small or compressed.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/threads/progress.h"

// Names are UTF-8. One thread.
class ZipFile {
public:
    static constexpr const char* kTooLarge = "is larger than 4 GB, which the format cannot hold";

    explicit ZipFile(const std::string& path);

    void Add(const std::string& name, std::string_view content);
    // Only a part of it where the progress is to stop, which is a problem then.
    void AddFile(const std::string& name, const std::string& path, LProgress& progress);
    // Empty, or what went wrong since the beginning: not all of it is there then.
    std::string Finish();

private:
    struct FileCloser {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    struct Entry {
        std::string name;
        std::uint32_t checksum;
        std::uint32_t size;
        std::uint32_t offset;
    };
    void Put(std::string_view bytes);
    void PutHeader(const Entry& entry, bool isCentral);
    void Begin(const std::string& name, std::uint32_t checksum, std::uint64_t size);

    std::unique_ptr<std::FILE, FileCloser> file_;
    std::vector<Entry> entries_;
    std::uint64_t size_ = 0;
    std::string problem_;
};
