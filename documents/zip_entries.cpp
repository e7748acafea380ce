#include "documents/zip_entries.h"

#include <archive.h>
#include <archive_entry.h>

namespace {

constexpr int kMaxEntries = 50000;
// Markup is some ten times its text; what unpacks to more is made to fill memory or time.
constexpr std::size_t kMaxUnpacked = 512U << 20;

}  // namespace

void ZipEntries::Close::operator()(archive* reader) const {
    archive_read_free(reader);
}

ZipEntries::ZipEntries(std::string_view bytes) : archive_(archive_read_new()) {
    isBroken_ = !archive_ || archive_read_support_format_zip(archive_.get()) != ARCHIVE_OK ||
                archive_read_open_memory(archive_.get(), bytes.data(), bytes.size()) != ARCHIVE_OK;
}

ZipEntries::~ZipEntries() = default;

bool ZipEntries::Next() {
    if (isBroken_ || isTooLarge_)
        return false;
    archive_entry* entry = nullptr;
    const int result = archive_read_next_header(archive_.get(), &entry);
    if (result == ARCHIVE_EOF)
        return false;
    isBroken_ = result != ARCHIVE_OK && result != ARCHIVE_WARN;
    isTooLarge_ = ++entries_ > kMaxEntries;
    if (isBroken_ || isTooLarge_)
        return false;
    const char* name = archive_entry_pathname_utf8(entry);
    if (name == nullptr)
        name = archive_entry_pathname(entry);
    name_ = name == nullptr ? "" : name;
    isEncrypted_ = archive_entry_is_data_encrypted(entry) != 0;
    return true;
}

bool ZipEntries::ReadBlock(std::string_view& block) {
    const void* data = nullptr;
    std::size_t size = 0;
    la_int64_t offset = 0;
    const int result = archive_read_data_block(archive_.get(), &data, &size, &offset);
    if (result == ARCHIVE_EOF)
        return false;
    unpacked_ += size;
    isBroken_ = result != ARCHIVE_OK && result != ARCHIVE_WARN;
    isTooLarge_ = unpacked_ > kMaxUnpacked;
    if (isBroken_ || isTooLarge_)
        return false;
    block = {static_cast<const char*>(data), size};
    return true;
}

bool ZipEntries::ReadAll(std::size_t limit, std::string& content) {
    content.clear();
    for (std::string_view block; ReadBlock(block);) {
        if (content.size() + block.size() > limit)
            return false;
        content += block;
    }
    return !isBroken_ && !isTooLarge_;
}
