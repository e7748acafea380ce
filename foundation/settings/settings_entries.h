// The key=value lines of a settings file, in file order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

constexpr std::size_t kSettingsTextLimit = 259;  // of a key or a value

// Kept as the very text that is saved, with an index of where each line's key and value stand: a
// store of 10,000 keys costs little more than its file, and saving formats nothing.
class LSettingsEntries {
public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    // A line by itself (with an empty key, so readers drop it) after which an unfinished rewrite
    // left copies of lines: Parse() keeps those whose key it has not seen.
    static constexpr std::string_view kCopiesFollow = "=rewrite\r\n";

    void Parse(std::string_view fileText);
    void Clear();

    std::size_t Count() const { return index_.size(); }
    std::size_t Find(std::string_view key) const;  // exact; the first of that key, or kNone
    std::size_t FindAnyCase(std::string_view key) const;
    std::string_view Key(std::size_t entry) const;
    std::string_view Value(std::size_t entry) const;

    // Key and value are at most 259 bytes.
    void Append(std::string_view key, std::string_view value);
    void SetValue(std::size_t entry, std::string_view value);
    void Remove(std::size_t entry);
    void DropShadowed();  // the lines that Find() never answers, because another has their key

    const std::string& Text() const { return text_; }  // "key=value\r\n" for each entry

private:
    struct Line {
        std::uint32_t offset;  // of the key in text_
        std::uint16_t keyLength;
        std::uint16_t valueLength;
        std::uint32_t keyHash;
    };
    static std::size_t LineSize(const Line& line);
    void Shift(std::size_t firstEntry, std::int64_t bytes);

    std::string text_;
    std::vector<Line> index_;
};
