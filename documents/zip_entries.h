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
    // UTF-8 where the archive says so or the name is, else its bytes.
    const std::string& Name() const { return name_; }
    bool IsEncrypted() const { return isEncrypted_; }

    // The file's bytes, a block at a time; false at its end, or when no more can be had.
    bool ReadBlock(std::string_view& block);
    // All of them, at most limit. False when that is not the whole file; what came is there.
    bool ReadAll(std::size_t limit, std::string& content);

    // Not all of the present file could be unpacked, or it is not what was packed.
    bool IsEntryBroken() const { return isEntryBroken_; }
    // The archive itself is damaged or cut: files may be missing.
    bool IsBroken() const { return isBroken_; }
    // There is more in it than in any document.
    bool IsTooLarge() const { return isTooLarge_; }

private:
    struct Close {
        void operator()(struct archive* reader) const;
    };

    void Open();
    bool OpenBehindBrokenEntry();
    bool NextHeader();

    std::string_view bytes_;
    std::unique_ptr<struct archive, Close> archive_;
    std::string name_;
    bool isEncrypted_ = false;
    bool isEntryBroken_ = false;
    bool isReaderLost_ = false;  // it reads no further, but can be opened anew
    bool isBroken_ = false;
    bool isTooLarge_ = false;
    int entries_ = 0;
    int reopened_ = 0;
    std::size_t unpacked_ = 0;
};
