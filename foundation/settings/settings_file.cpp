#include "foundation/settings/settings_file.h"

#include <fcntl.h>
#include <sys/file.h>

#include "foundation/ascii.h"
#include "foundation/files/file_io.h"
#include "foundation/files/flock_timed.h"
#include "foundation/files/store_file.h"
#include "foundation/files/text_buffer.h"
#include "foundation/settings/file_rewrite.h"

namespace {

constexpr int kReadLockMilliseconds = 2000;
constexpr int kTestLockMilliseconds = 1000;
constexpr int kWriteLockMilliseconds = 3000;

std::string_view CutToLimit(const char* text) {
    return std::string_view(text ? text : "").substr(0, kSettingsTextLimit);
}

// A line break would end the value for every reader of the file.
std::string_view CutValue(const char* text) {
    const std::string_view value = CutToLimit(text);
    return value.substr(0, value.find_first_of("\r\n"));
}

// What a reader of the file takes for the key; one written otherwise would never be found again.
std::string_view CutKey(const char* text) {
    std::string_view key = text ? text : "";
    while (!key.empty() && static_cast<unsigned char>(key.front()) < 33)
        key.remove_prefix(1);
    return key.substr(0, key.find_first_of("=\r\n")).substr(0, kSettingsTextLimit);
}

}  // namespace

LSettingsFile& LSettingsFile::operator=(const LSettingsFile& other) {
    if (this != &other)
        ChangeFilePath(other.Path());
    return *this;
}

void LSettingsFile::ChangeFilePath(const char* path) {
    path_ = CutToLimit(path);
    Forget();
}

void LSettingsFile::Forget() {
    entries_.Clear();
    stamps_ = Stamps();
}

LSettingsFile::Stamps LSettingsFile::StampsOf(int fd) {
    struct stat status = {};
    if (fstat(fd, &status) != 0)
        return Stamps();
    return {static_cast<std::uint32_t>(status.st_mtime),
            static_cast<std::uint32_t>(status.st_size)};
}

void LSettingsFile::GetString(const char* key, const char* defaultValue, char* out) {
    const UniqueFd file = OpenStoreFile(path_.c_str(), O_RDONLY);
    if (file.IsOpen()) {
        LockInTurn(file.Get(), LOCK_SH | LOCK_NB, kReadLockMilliseconds);
        ReloadIfChanged(file.Get());
    }
    const std::size_t entry = entries_.Find(ToLower(CutKey(key)));
    CopyText(out, kTextBufferSize,
             entry == LSettingsEntries::kNone ? CutToLimit(defaultValue) : entries_.Value(entry));
}

bool LSettingsFile::TestFieldExists(const char* key) {
    const UniqueFd file = OpenStoreFile(path_.c_str(), O_RDONLY);
    if (file.IsOpen()) {
        LockInTurn(file.Get(), LOCK_SH | LOCK_NB, kTestLockMilliseconds);
        ReloadIfChanged(file.Get());
    }
    return entries_.FindAnyCase(CutKey(key)) != LSettingsEntries::kNone;
}

void LSettingsFile::SetString(const char* key, const char* value) {
    const std::string lowered = ToLower(CutKey(key));
    if (lowered.empty())
        return;  // lines without a key are the rewrite's own
    const UniqueFd file = OpenStoreFile(path_.c_str(), value ? O_RDWR | O_CREAT : O_RDWR);
    if (!file.IsOpen())
        return;
    LockInTurn(file.Get(), LOCK_EX | LOCK_NB, kWriteLockMilliseconds);
    std::string content;
    if (!ReadWholeFile(file.Get(), kLargestReadableFile, content))
        return;
    // Another process may have written within the same second and left the size as it was: before a
    // write only the content itself tells.
    const Stamps now = StampsOf(file.Get());
    if (!(now == stamps_) || content != entries_.Text()) {
        entries_.Parse(content);
        // A line behind another of its key would come to light when that one goes.
        entries_.DropShadowed();
        stamps_ = now;
    }
    const std::size_t entry = entries_.Find(lowered);
    if (entry == LSettingsEntries::kNone) {
        if (!value)
            return;
        entries_.Append(lowered, CutValue(value));
    } else if (!value) {
        entries_.Remove(entry);
    } else if (entries_.Value(entry) == CutValue(value)) {
        return;
    } else {
        entries_.SetValue(entry, CutValue(value));
    }
    SaveOver(file.Get(), content);
}

void LSettingsFile::Load(int fd) {
    std::string content;
    const Stamps now = StampsOf(fd);
    ReadWholeFile(fd, kLargestReadableFile, content);
    entries_.Parse(content);
    stamps_ = now;
}

void LSettingsFile::Save(int fd) {
    std::string content;
    if (ReadWholeFile(fd, kLargestReadableFile, content))
        SaveOver(fd, content);
}

void LSettingsFile::SaveOver(int fd, const std::string& oldText) {
    if (RewriteSettingsLines(fd, oldText, entries_.Text()))
        stamps_ = StampsOf(fd);
    else
        Forget();  // the file is the truth: the next access reads what other processes read
}

void LSettingsFile::ReloadIfChanged(int fd) {
    if (!(StampsOf(fd) == stamps_))
        Load(fd);
}
