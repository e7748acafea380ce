#include "foundation/settings/dat_file_native.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>

#include "foundation/ascii.h"
#include "foundation/files/file_io.h"
#include "foundation/files/flock_timed.h"
#include "foundation/files/text_buffer.h"
#include "foundation/log/log.h"
#include "foundation/settings/file_rewrite.h"
#include "foundation/threads/ticks.h"

LDatFileNativeSystem gDatFileNativeSystem;

namespace {

constexpr std::size_t kLongestLine = 551;  // what follows is dropped
constexpr int kDatLockMilliseconds = 1000;

std::string_view CutToBuffer(std::string_view text) {
    return text.substr(0, kTextBufferSize - 1);
}

// What ends each part for every reader of the file.
constexpr const char* kSectionEnds = "]\r\n";
constexpr const char* kKeyEnds = "=\r\n";
constexpr const char* kValueEnds = "\r\n";

std::string_view CutAt(const char* ends, std::string_view text) {
    return CutToBuffer(text.substr(0, text.find_first_of(ends)));
}

std::string KeyIndex(std::string_view key) {
    return ToLower(CutAt(kKeyEnds, key));
}

std::string SectionIndex(std::string_view section) {
    return ToLower(CutAt(kSectionEnds, section));
}

}  // namespace

const std::string* LDatFileNativeSection::Find(std::string_view key) const {
    const auto found = index_.find(KeyIndex(key));
    return found == index_.end() ? nullptr : &found->second->second;
}

void LDatFileNativeSection::SetValue(std::string_view key, std::string_view value) {
    const auto [found, added] = index_.try_emplace(KeyIndex(key));
    if (added)
        found->second =
            entries_.emplace(entries_.end(), CutAt(kKeyEnds, key), CutAt(kValueEnds, value));
    else
        found->second->second = CutAt(kValueEnds, value);
}

void LDatFileNativeSection::DeleteKey(std::string_view key) {
    const auto found = index_.find(KeyIndex(key));
    if (found == index_.end())
        return;
    entries_.erase(found->second);
    index_.erase(found);
}

void LDatFileNativeSection::AppendTo(std::string& text) const {
    text.append("[").append(name_).append("]\r\n");
    for (const auto& [key, value] : entries_)
        text.append(key).append("=").append(value).append("\r\n");
    text.append("\r\n");
}

LDatFileNativeSection* LDatFileNativeFile::Find(std::string_view section) {
    const auto found = index_.find(SectionIndex(section));
    return found == index_.end() ? nullptr : &*found->second;
}

LDatFileNativeSection& LDatFileNativeFile::FindOrAppend(std::string_view section) {
    const auto [found, added] = index_.try_emplace(SectionIndex(section));
    if (added)
        found->second = sections_.emplace(sections_.end(), CutAt(kSectionEnds, section));
    return *found->second;
}

void LDatFileNativeFile::Load() {
    index_.clear();
    sections_.clear();
    dirty_ = false;
    const UniqueFd file = OpenFileForReading(path_.c_str());
    if (file.IsOpen())
        flocktimed(file.Get(), LOCK_SH | LOCK_NB, kDatLockMilliseconds);
    std::string content;
    unreadable_ = file.IsOpen() ? !ReadWholeFile(file.Get(), kLargestDataFile, content)
                                : access(path_.c_str(), F_OK) == 0;
    Parse(WholeTextOf(content));
}

void LDatFileNativeFile::Parse(std::string_view text) {
    LDatFileNativeSection* section = nullptr;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find_first_of("\r\n"), text.size());
        std::string_view line = text.substr(0, std::min(length, kLongestLine));
        line = line.substr(0, line.find('\0'));
        text.remove_prefix(std::min(length + 1, text.size()));
        const std::size_t equals = line.find('=');
        if (line.starts_with('['))
            section = &FindOrAppend(line.substr(1, line.find(']') - 1));
        else if (section && equals != std::string_view::npos)
            section->SetValue(line.substr(0, equals), line.substr(equals + 1));
    }
}

std::string LDatFileNativeFile::Text() const {
    std::string text;
    for (const LDatFileNativeSection& section : sections_)
        section.AppendTo(text);
    return text;
}

bool LDatFileNativeFile::Save() {
    if (!dirty_)
        return true;
    if (unreadable_)
        return false;
    const UniqueFd file = OpenRegularFile(path_.c_str(), O_RDWR | O_CREAT);
    if (!file.IsOpen())
        return false;
    flocktimed(file.Get(), LOCK_EX | LOCK_NB, kDatLockMilliseconds);
    std::string content;
    dirty_ = !ReadWholeFile(file.Get(), kLargestDataFile, content) ||
             !RewriteFile(file.Get(), content, Text());
    return !dirty_;
}

const std::string* LDatFileNativeFile::GetValue(std::string_view section, std::string_view key,
                                                std::uint32_t now) {
    lastAccess_ = now;
    const LDatFileNativeSection* known = Find(section);
    return known ? known->Find(key) : nullptr;
}

void LDatFileNativeFile::SetValue(std::string_view section, const char* key, const char* value,
                                  std::uint32_t now) {
    dirty_ = true;
    lastAccess_ = now;
    if (!key) {
        const auto found = index_.find(SectionIndex(section));
        if (found != index_.end()) {
            sections_.erase(found->second);
            index_.erase(found);
        }
        return;
    }
    if (value && (CutAt(kKeyEnds, key).empty() || *key == '['))
        return;  // read back, the line would be none or a section
    // Deleting from a missing section creates it: its bare header line is written out.
    LDatFileNativeSection& known = FindOrAppend(section);
    if (value)
        known.SetValue(key, value);
    else
        known.DeleteKey(key);
}

LDatFileNativeSystem::~LDatFileNativeSystem() {
    for (LDatFileNativeFile& file : files_)
        file.Save();
}

LDatFileNativeFile* LDatFileNativeSystem::Find(std::string_view file) {
    for (LDatFileNativeFile& known : files_) {
        if (EqualsNoCase(known.Path(), CutToBuffer(file)))
            return &known;
    }
    return nullptr;
}

LDatFileNativeFile& LDatFileNativeSystem::Open(const char* file, std::uint32_t now) {
    if (LDatFileNativeFile* known = Find(file))
        return *known;
    LDatFileNativeFile& added = files_.emplace_front(CutToBuffer(file), now);
    added.Load();
    return added;
}

void LDatFileNativeSystem::GetValue(const char* file, const char* section, const char* key,
                                    const char* defaultValue, char* out) {
    const std::lock_guard lock(mutex_);
    const std::uint32_t now = GetTickCount();
    const std::string* value = Open(file, now).GetValue(section, key, now);
    CopyText(out, kTextBufferSize, value ? *value : defaultValue ? defaultValue : "");
}

void LDatFileNativeSystem::SetValue(const char* file, const char* section, const char* key,
                                    const char* value) {
    const std::lock_guard lock(mutex_);
    const std::uint32_t now = GetTickCount();
    Open(file, now).SetValue(section, key, value, now);
}

void LDatFileNativeSystem::Flush(const char* file) {
    const std::lock_guard lock(mutex_);
    LDatFileNativeFile* known = Find(file);
    if (known)
        known->Save();
}

void LDatFileNativeSystem::Flush(std::uint32_t now) {
    const std::lock_guard lock(mutex_);
    files_.remove_if([now](LDatFileNativeFile& file) {
        const bool saved = file.Save();
        if (!file.IsIdle(now, kIdleMilliseconds))
            return false;
        if (!saved)
            LOGERROR("Changes cannot be saved and are kept in memory: ", file.Path().c_str());
        return saved;
    });
}

bool LDatFileNativeSystem::IsCached(const char* file) {
    const std::lock_guard lock(mutex_);
    return Find(file) != nullptr;
}
