#include "formats/dictation_header.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "formats/file_io.h"

namespace {

constexpr int kNotes = 11;
constexpr std::uint16_t kNewestVersion = 3;
constexpr std::uint32_t kEncryptedFlag = 2;
constexpr std::uint32_t kAttachmentsFlag = 4;

using Text = LStringLongTemplate<char>;

std::uint8_t ReadByte(LSharedReadFile& file) {
    std::uint8_t byte = 0;
    return file.Read(&byte, 1) == 1 ? byte : std::uint8_t{0};
}

std::uint32_t ReadWord(LSharedReadFile& file) {
    std::uint8_t bytes[4];
    return file.Read(bytes, sizeof(bytes)) == sizeof(bytes) ? LoadLE32(bytes) : 0;
}

std::uint16_t ReadVersion(LSharedReadFile& file) {
    std::uint8_t bytes[2];
    return file.Read(bytes, sizeof(bytes)) == sizeof(bytes) ? LoadLE16(bytes) : 0xFFFF;
}

// Stops at the end of the file: what is read there are zeros.
void SkipBytes(LSharedReadFile& file, std::uint32_t count) {
    if (!file.Skip(count))
        file.Seek(file.GetSize());
}

// A length byte and that many bytes, up to the first NUL among them.
std::string ReadNote(LSharedReadFile& file) {
    char bytes[256];
    const std::size_t length = file.Read(bytes, ReadByte(file));
    bytes[length] = '\0';
    return bytes;
}

// Headings are appended even to the scratch text of a quiet call.
class Description {
public:
    Description(Text& text, bool quiet) : text_(text), quiet_(quiet) {
        if (!quiet_)
            text_.Clear();
    }
    void Heading(const char* line) { text_.Append(line); }
    void Line(const std::string& line) {
        if (!quiet_)
            text_.Append(line + "\r\n");
    }

private:
    Text& text_;
    bool quiet_;
};

void WalkNotes(LSharedReadFile& file, Description& description) {
    description.Heading("\r\nOther Notes:\r\n\r\n");
    for (int i = 0; i < kNotes; ++i) {
        const std::string note = ReadNote(file);
        if (!note.empty())
            description.Line(note);
    }
}

bool WalkAttachments(LSharedReadFile& file, std::int64_t fileSize, Description& description) {
    description.Heading("\r\nAttachments:\r\n\r\n");
    for (int left = ReadByte(file); left > 0; --left) {
        const std::string name = ReadNote(file);
        if (!name.empty())
            description.Line("File: " + name);
        const std::uint32_t size = ReadWord(file);
        if (size > fileSize)
            return false;
        if (size != 0) {
            char line[40];
            std::snprintf(line, sizeof(line), " (%.2f KB)", size / 1024.0);
            description.Line(line);
        }
        SkipBytes(file, size);
    }
    return true;
}

bool SkipBlock(LSharedReadFile& file, std::int64_t largest) {
    const std::uint32_t length = ReadWord(file);
    if (length > largest)
        return false;
    SkipBytes(file, length);
    return true;
}

}  // namespace

bool ReadDCTHeader(LSharedReadFile& file, Text& text, bool quiet) {
    if (!file.IsOpen())
        return false;
    Description description(text, quiet);
    const std::int64_t fileSize = file.GetSize();
    const std::uint16_t version = ReadVersion(file);
    if (version > kNewestVersion || ReadWord(file) != fileSize)
        return false;
    const std::uint32_t flags = ReadWord(file);
    const bool encrypted = version >= 2 && (flags & kEncryptedFlag) != 0;
    description.Line("Version: " + std::to_string(version));
    description.Line(encrypted ? "Encrypted: Yes" : "Encrypted: No");
    SkipBytes(file, 8);
    if (version == 3 && !SkipBlock(file, fileSize - 1))
        return false;
    SkipBytes(file, 4);
    WalkNotes(file, description);
    SkipBytes(file, 1);
    if (!SkipBlock(file, fileSize))
        return false;
    if ((flags & kAttachmentsFlag) != 0 && !WalkAttachments(file, fileSize, description))
        return false;
    return version == 0 || ReadByte(file) != 0;
}

bool ReadDCTHeader(const char* path, Text& text, bool quiet) {
    LSharedReadFile file(path);
    return ReadDCTHeader(file, text, quiet);
}

bool SkipDCTHeader(LSharedReadFile& file) {
    Text scratch;
    return ReadDCTHeader(file, scratch, true);
}

void LDCTDecode::SkipDCTString(LSharedReadFile& file) {
    SkipBytes(file, ReadByte(file));
}
