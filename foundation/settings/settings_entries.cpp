#include "foundation/settings/settings_entries.h"

#include <algorithm>
#include <limits>
#include <unordered_set>

#include "foundation/ascii.h"

namespace {

constexpr std::string_view kLineEnd = "\r\n";

bool IsLineEnd(char c) {
    return c == '\r' || c == '\n';
}

std::uint32_t Hash(std::string_view key) {
    std::uint32_t hash = 2166136261u;
    for (const char c : key)
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return hash;
}

// What the 260-byte buffers of the format hold: 259 bytes, ending at a NUL.
std::string_view CutToStored(std::string_view text) {
    text = text.substr(0, kSettingsTextLimit);
    return text.substr(0, text.find('\0'));
}

std::size_t SkipLineEnd(std::string_view text, std::size_t at) {
    if (at == text.size())
        return at;
    const char first = text[at++];
    if (at < text.size() && IsLineEnd(text[at]) && text[at] != first)
        ++at;
    return at;
}

}  // namespace

std::size_t LSettingsEntries::LineSize(const Line& line) {
    return line.keyLength + 1u + line.valueLength + kLineEnd.size();
}

void LSettingsEntries::Clear() {
    text_ = std::string();
    index_ = std::vector<Line>();
}

void LSettingsEntries::Parse(std::string_view fileText) {
    Clear();
    text_.reserve(fileText.size());
    constexpr std::string_view marker = kCopiesFollow.substr(1, kCopiesFollow.size() - 3);
    bool copies = false;
    std::unordered_set<std::string> known;
    std::size_t at = 0;
    for (;;) {
        while (at < fileText.size() && static_cast<unsigned char>(fileText[at]) < 33)
            ++at;
        if (at == fileText.size())
            break;
        const std::size_t keyEnd = std::min(fileText.find_first_of("=\r\n", at), fileText.size());
        const std::string_view key = CutToStored(fileText.substr(at, keyEnd - at));
        // All "=" are skipped, so a value loses those it begins with: every program that reads
        // these files splits a line there.
        at = std::min(fileText.find_first_not_of('=', keyEnd), fileText.size());
        const std::size_t valueEnd = std::min(fileText.find_first_of("\r\n", at), fileText.size());
        const std::string_view value = CutToStored(fileText.substr(at, valueEnd - at));
        at = SkipLineEnd(fileText, valueEnd);
        if (key.empty()) {
            if (value == marker && !copies) {
                copies = true;
                for (std::size_t entry = 0; entry < Count(); ++entry)
                    known.emplace(Key(entry));
            }
            continue;
        }
        if (!copies || known.emplace(key).second)
            Append(key, value);
    }
    text_.shrink_to_fit();
    index_.shrink_to_fit();
}

std::size_t LSettingsEntries::Find(std::string_view key) const {
    const std::uint32_t hash = Hash(key);
    for (std::size_t entry = 0; entry < index_.size(); ++entry) {
        if (index_[entry].keyHash == hash && Key(entry) == key)
            return entry;
    }
    return kNone;
}

std::size_t LSettingsEntries::FindAnyCase(std::string_view key) const {
    for (std::size_t entry = 0; entry < index_.size(); ++entry) {
        if (index_[entry].keyLength == key.size() && EqualsNoCase(Key(entry), key))
            return entry;
    }
    return kNone;
}

std::string_view LSettingsEntries::Key(std::size_t entry) const {
    return std::string_view(text_).substr(index_[entry].offset, index_[entry].keyLength);
}

std::string_view LSettingsEntries::Value(std::size_t entry) const {
    const Line& line = index_[entry];
    return std::string_view(text_).substr(line.offset + line.keyLength + 1u, line.valueLength);
}

void LSettingsEntries::Append(std::string_view key, std::string_view value) {
    if (text_.size() > std::numeric_limits<std::uint32_t>::max() - 1024)
        return;  // offsets are 32 bits; files this long are refused before
    index_.push_back({static_cast<std::uint32_t>(text_.size()),
                      static_cast<std::uint16_t>(key.size()),
                      static_cast<std::uint16_t>(value.size()), Hash(key)});
    text_.append(key).append(1, '=').append(value).append(kLineEnd);
}

void LSettingsEntries::SetValue(std::size_t entry, std::string_view value) {
    Line& line = index_[entry];
    const std::int64_t growth = static_cast<std::int64_t>(value.size()) - line.valueLength;
    text_.replace(line.offset + line.keyLength + 1u, line.valueLength, value);
    line.valueLength = static_cast<std::uint16_t>(value.size());
    Shift(entry + 1, growth);
}

void LSettingsEntries::Remove(std::size_t entry) {
    const std::size_t size = LineSize(index_[entry]);
    text_.erase(index_[entry].offset, size);
    index_.erase(index_.begin() + static_cast<std::ptrdiff_t>(entry));
    Shift(entry, -static_cast<std::int64_t>(size));
}

void LSettingsEntries::DropShadowed() {
    std::unordered_set<std::string_view> known;
    known.reserve(Count());
    LSettingsEntries kept;
    for (std::size_t entry = 0; entry < Count(); ++entry) {
        if (known.insert(Key(entry)).second)
            kept.Append(Key(entry), Value(entry));
    }
    if (kept.Count() < Count())
        *this = std::move(kept);
}

void LSettingsEntries::Shift(std::size_t firstEntry, std::int64_t bytes) {
    for (std::size_t entry = firstEntry; bytes != 0 && entry < index_.size(); ++entry)
        index_[entry].offset = static_cast<std::uint32_t>(index_[entry].offset + bytes);
}
