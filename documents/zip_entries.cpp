#include "documents/zip_entries.h"

#include <archive.h>
#include <archive_entry.h>
#include <locale.h>

namespace {

constexpr int kMaxEntries = 50000;
constexpr int kMaxReopened = 20;
// Markup is some ten times its text; what unpacks to more is made to fill memory or time.
constexpr std::size_t kMaxUnpacked = 512U << 20;

// The library translates names into the thread's charset: while this lives that is UTF-8, whatever
// the user's is.
class Utf8Names {
public:
    Utf8Names() : locale_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
        if (locale_ != nullptr)
            former_ = ::uselocale(locale_);
    }
    ~Utf8Names() {
        if (locale_ == nullptr)
            return;
        ::uselocale(former_);
        ::freelocale(locale_);
    }
    Utf8Names(const Utf8Names&) = delete;
    Utf8Names& operator=(const Utf8Names&) = delete;

private:
    locale_t locale_;
    locale_t former_ = nullptr;
};

}  // namespace

void ZipEntries::Close::operator()(archive* reader) const {
    archive_read_free(reader);
}

ZipEntries::ZipEntries(std::string_view bytes) : bytes_(bytes) {
    Open();
}

ZipEntries::~ZipEntries() = default;

void ZipEntries::Open() {
    archive_.reset(archive_read_new());
    isBroken_ =
        !archive_ || archive_read_support_format_zip(archive_.get()) != ARCHIVE_OK ||
        archive_read_open_memory(archive_.get(), bytes_.data(), bytes_.size()) != ARCHIVE_OK;
}

// One file that cannot be unpacked takes no other with it.
bool ZipEntries::OpenBehindBrokenEntry() {
    const int read = entries_;
    isReaderLost_ = false;
    if (++reopened_ > kMaxReopened) {
        isBroken_ = true;
        return false;
    }
    Open();
    entries_ = 0;
    while (entries_ < read)
        if (!NextHeader())
            return false;
    return true;
}

bool ZipEntries::Next() {
    if (isBroken_ || isTooLarge_ || (isReaderLost_ && !OpenBehindBrokenEntry()))
        return false;
    return NextHeader();
}

bool ZipEntries::NextHeader() {
    if (isBroken_)
        return false;
    const Utf8Names names;
    archive_entry* entry = nullptr;
    const int result = archive_read_next_header(archive_.get(), &entry);
    isEntryBroken_ = false;
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
    if (isEntryBroken_ || isTooLarge_ || isBroken_)
        return false;
    const void* data = nullptr;
    std::size_t size = 0;
    la_int64_t offset = 0;
    const int result = archive_read_data_block(archive_.get(), &data, &size, &offset);
    if (result == ARCHIVE_EOF)
        return false;
    isEntryBroken_ = result != ARCHIVE_OK;
    isReaderLost_ = result == ARCHIVE_FATAL;
    // The last block of a file whose checksum is wrong comes with a warning, or as a failure from
    // libarchive 3.7 on; a failure to unpack has no block.
    const bool hasBlock = result == ARCHIVE_OK || result == ARCHIVE_WARN ||
                          (result == ARCHIVE_FAILED && data != nullptr);
    if (!hasBlock)
        return false;
    unpacked_ += size;
    isTooLarge_ = unpacked_ > kMaxUnpacked;
    if (isTooLarge_)
        return false;
    block = {static_cast<const char*>(data), size};
    return true;
}

bool ZipEntries::ReadAll(std::size_t limit, std::string& content) {
    content.clear();
    for (std::string_view block; ReadBlock(block);) {
        const std::size_t room = limit - content.size();
        content += block.substr(0, room);
        if (block.size() > room)
            return false;
    }
    return !isEntryBroken_ && !isTooLarge_;
}
