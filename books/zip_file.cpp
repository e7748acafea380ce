#include "books/zip_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <limits>

namespace {

constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max() - (1U << 24);
constexpr std::size_t kMostEntries = 65000;
constexpr int kVersion = 20;
constexpr int kNamesAreUtf8 = 1 << 11;
constexpr int kFirstDay = 1 << 5 | 1;  // of 1980, since times would make each file another

std::uint32_t Checksum(std::uint32_t sum, std::string_view bytes) {
    static const std::array<std::uint32_t, 256> kTable = [] {
        std::array<std::uint32_t, 256> table{};
        for (std::uint32_t i = 0; i < table.size(); ++i) {
            table[i] = i;
            for (int bit = 0; bit < 8; ++bit)
                table[i] = table[i] >> 1 ^ ((table[i] & 1) != 0 ? 0xEDB88320U : 0);
        }
        return table;
    }();
    sum = ~sum;
    for (const char byte : bytes)
        sum = kTable[(sum ^ static_cast<unsigned char>(byte)) & 0xFF] ^ sum >> 8;
    return ~sum;
}

void Put16(std::string& bytes, std::uint32_t value) {
    bytes += static_cast<char>(value & 0xFF);
    bytes += static_cast<char>(value >> 8 & 0xFF);
}

void Put32(std::string& bytes, std::uint32_t value) {
    Put16(bytes, value);
    Put16(bytes, value >> 16);
}

}  // namespace

ZipFile::ZipFile(const std::string& path) : file_(std::fopen(path.c_str(), "wbe")) {
    if (!file_)
        problem_ = std::strerror(errno);
}

void ZipFile::Put(std::string_view bytes) {
    if (problem_.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size())
        problem_ = std::strerror(errno);
    size_ += bytes.size();
}

void ZipFile::PutHeader(const Entry& entry, bool isCentral) {
    std::string header = isCentral ? "PK\1\2" : "PK\3\4";
    if (isCentral)
        Put16(header, kVersion);
    for (const int each : {kVersion, kNamesAreUtf8, 0, 0, kFirstDay})
        Put16(header, static_cast<std::uint32_t>(each));
    Put32(header, entry.checksum);
    Put32(header, entry.size);
    Put32(header, entry.size);
    Put16(header, static_cast<std::uint32_t>(entry.name.size()));
    Put16(header, 0);
    if (isCentral) {
        header.append(10, '\0');  // no comment, first disk, no attributes
        Put32(header, entry.offset);
    }
    Put(header + entry.name);
}

void ZipFile::Begin(const std::string& name, std::uint32_t checksum, std::uint64_t size) {
    if (size_ + size > kMost || entries_.size() >= kMostEntries) {
        problem_ = problem_.empty() ? kTooLarge : problem_;
        return;
    }
    entries_.push_back(
        {name, checksum, static_cast<std::uint32_t>(size), static_cast<std::uint32_t>(size_)});
    PutHeader(entries_.back(), false);
}

void ZipFile::Add(const std::string& name, std::string_view content) {
    Begin(name, Checksum(0, content), content.size());
    Put(content);
}

void ZipFile::AddFile(const std::string& name, const std::string& path, LProgress& progress) {
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rbe"));
    if (!file) {
        problem_ = problem_.empty() ? std::strerror(errno) : problem_;
        return;
    }
    std::vector<char> block(65536);
    const auto read = [&] {
        const std::size_t most = progress.IsToStop() ? 0 : block.size();
        return std::string_view(block.data(), std::fread(block.data(), 1, most, file.get()));
    };
    std::uint32_t checksum = 0;
    std::uint64_t size = 0;
    for (std::string_view bytes = read(); !bytes.empty(); bytes = read()) {
        checksum = Checksum(checksum, bytes);
        size += bytes.size();
    }
    std::fseek(file.get(), 0, SEEK_SET);
    Begin(name, checksum, size);
    for (std::string_view bytes = read(); !bytes.empty() && problem_.empty(); bytes = read()) {
        Put(bytes);
        size -= std::min<std::uint64_t>(size, bytes.size());
    }
    if (problem_.empty() && (progress.IsToStop() || std::ferror(file.get()) != 0 || size > 0))
        problem_ = "a finished chapter cannot be read";
}

std::string ZipFile::Finish() {
    const std::uint64_t begin = size_;
    for (const Entry& entry : entries_)
        PutHeader(entry, true);
    std::string end = "PK\5\6";
    Put32(end, 0);
    Put16(end, static_cast<std::uint32_t>(entries_.size()));
    Put16(end, static_cast<std::uint32_t>(entries_.size()));
    Put32(end, static_cast<std::uint32_t>(size_ - begin));
    Put32(end, static_cast<std::uint32_t>(begin));
    Put16(end, 0);
    Put(end);
    if (file_ && std::fclose(file_.release()) != 0 && problem_.empty())
        problem_ = std::strerror(errno);
    return problem_;
}
