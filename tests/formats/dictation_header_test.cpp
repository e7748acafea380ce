#include "formats/dictation_header.h"

#include "formats/file_io.h"
#include "tests/formats/format_files.h"

namespace {

struct Dictation {  // a header whose fields can be changed one at a time
    std::uint32_t version = 3, flags = 6, extra = 2, second = 3, endMark = 1;
    std::uint32_t sizeError = 0, attachmentSize = 2048, attachmentNameLength = 5;
    std::uint32_t firstNoteLength = 5;
    std::string notes = Bytes().Text("hello").Fill(9).U8(2).Text("by").Str();

    std::string Build() const {
        Bytes tail;
        tail.LE32(flags).Fill(8, 'r');
        if (version == 3)
            tail.LE32(extra).Fill(extra < 100 ? extra : 0, 'x');
        tail.Fill(4, 'r')
            .U8(firstNoteLength)
            .Text(notes)
            .Fill(1, 'r')
            .LE32(second)
            .Fill(second < 100 ? second : 0, 'y');
        if ((flags & 4) != 0) {
            tail.U8(2).U8(attachmentNameLength).Text("a.txt").LE32(attachmentSize);
            tail.Fill(attachmentSize < 5000 ? attachmentSize : 0, 'd').U8(0).LE32(0);
        }
        if (version >= 1)
            tail.U8(endMark);
        const auto size = static_cast<std::uint32_t>(tail.Str().size()) + 6 + 4 + sizeError;
        Bytes whole;
        whole.LE16(version).LE32(size).Text(tail.Str()).Text("SND!");
        return whole.Str();
    }
};

class DictationHeader : public FormatTest {
protected:
    // Description of a valid header, "refused" for another. Checks where a valid one leaves the
    // file.
    std::string Describe(const std::string& bytes, bool quiet = false) const {
        const std::string path = Store("d.dct", bytes);
        LSharedReadFile file(path.c_str());
        LStringLongTemplate<char> text(std::string_view("old"));
        LSharedReadFile skipped(path.c_str());
        const bool valid = ReadDCTHeader(file, text, quiet);
        EXPECT_EQ(SkipDCTHeader(skipped), valid);
        EXPECT_EQ(ReadDCTHeader(path.c_str(), text, quiet), valid);
        if (!valid)
            return "refused";
        char rest[8];
        EXPECT_EQ(std::string(rest, file.Read(rest, sizeof(rest))), "SND!");
        EXPECT_EQ(skipped.Tell(), file.Tell() - 4);
        return std::string(text.View());
    }
};

TEST_F(DictationHeader, IsDescribedAndSkipped) {
    EXPECT_EQ(Describe(Dictation().Build()),
              "Version: 3\r\nEncrypted: Yes\r\n\r\nOther Notes:\r\n\r\nhello\r\nby\r\n"
              "\r\nAttachments:\r\n\r\nFile: a.txt\r\n (2.00 KB)\r\n");
    Dictation plain;
    plain.version = 0;
    plain.flags = 2;  // means nothing before version 2
    plain.firstNoteLength = 0;
    plain.notes = std::string(10, '\0');
    EXPECT_EQ(Describe(plain.Build()), "Version: 0\r\nEncrypted: No\r\n\r\nOther Notes:\r\n\r\n");
    plain.version = 2;
    EXPECT_EQ(Describe(plain.Build()).substr(0, 28), "Version: 2\r\nEncrypted: Yes\r\n");
    // A quiet call keeps the text and still appends the headings; twice, here.
    const std::string headings = "\r\nOther Notes:\r\n\r\n\r\nAttachments:\r\n\r\n";
    EXPECT_EQ(Describe(Dictation().Build(), true), "old" + headings + headings);
}

TEST_F(DictationHeader, OneChangedFieldACase) {
    const std::tuple<std::uint32_t Dictation::*, std::vector<std::uint32_t>, bool> cases[] = {
        {&Dictation::version, {4, 65535}, false},
        {&Dictation::sizeError, {1, 0xFFFFFFFF}, false},
        {&Dictation::extra, {1 << 20, 1U << 31, 0xFFFFFFFF}, false},
        {&Dictation::second, {1 << 20, 1U << 31, 0xFFFFFFFF}, false},
        {&Dictation::attachmentSize, {1 << 20, 1U << 31, 0xFFFFFFFF}, false},
        {&Dictation::attachmentNameLength, {255}, false},
        {&Dictation::firstNoteLength, {255}, false},
        {&Dictation::endMark, {0}, false},
        {&Dictation::endMark, {1, 255}, true},
        {&Dictation::extra, {0}, true},
        {&Dictation::second, {0}, true}};
    for (const auto& [field, values, valid] : cases) {
        for (const std::uint32_t value : values) {
            Dictation header;
            if (value == 255)  // so that a length reaches past the end
                header.attachmentSize = 0;
            header.*field = value;
            EXPECT_EQ(Describe(header.Build()) != "refused", valid)
                << value << ", where it was " << Dictation().*field;
        }
    }
}

}  // namespace
