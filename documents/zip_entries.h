// The files in a ZIP archive that lies in memory, one after the other.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

class ZipEntries {
public:
    // The archive's bytes must outlive this.
    explicit ZipEntries(std::string_view bytes);
    ~ZipEntries();
    ZipEntries(const ZipEntries&) = delete;
    ZipEntries& operator=(const ZipEntries&) = delete;

    // Goes to the next file; false behind the last one.
    bool Next();
    const std::string& Name() const { return name_; }
    bool IsEncrypted() const { return isEncrypted_; }

    // The file's bytes, a block at a time; false at its end, or when no more can be had.
    bool ReadBlock(std::string_view& block);
    // All of them; false when there are more than limit or not all could be had.
    bool ReadAll(std::size_t limit, std::string& content);

    // Something could not be unpacked.
    bool IsBroken() const { return isBroken_; }
    // There is more in it than in any document.
    bool IsTooLarge() const { return isTooLarge_; }

private:
    struct Close {
        void operator()(struct archive* reader) const;
    };
    std::unique_ptr<struct archive, Close> archive_;
    std::string name_;
    bool isEncrypted_ = false;
    bool isBroken_ = false;
    bool isTooLarge_ = false;
    int entries_ = 0;
    std::size_t unpacked_ = 0;
};
