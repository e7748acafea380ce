// Raw, AU and AIFF files: bytes on disk, hostile headers, and what the two headers' oddities do.

#include <climits>

#include "formats/aiff_file.h"
#include "formats/au_file.h"
#include "formats/raw_file.h"
#include "tests/formats/format_files.h"

namespace {

using namespace SoundStatus;

class RowFiles : public FormatTest {};

std::string AuHeader(std::uint32_t headerSize, std::uint32_t dataSize, std::uint32_t encoding,
                     std::uint32_t rate, std::uint32_t channels) {
    Bytes b;
    b.Text(".snd").BE32(headerSize).BE32(dataSize).BE32(encoding).BE32(rate).BE32(channels);
    return b.Str();
}

std::string Rate(std::uint32_t exponent, std::uint32_t mantissa) {
    return Bytes().BE16(exponent).BE32(mantissa).Fill(4).Str();
}

struct Aiff {  // a file whose fields can be changed one at a time
    std::string form = "FORM", type = "AIFF", before{}, between{}, commTail{};
    std::uint32_t commSize = 18, channels = 1, bits = 16, ssndSize = 8 + 6;
    std::string rate = Rate(0x400E, 0xAC440000);

    std::string Build() const {
        Bytes b;
        b.Text(form).BE32(99).Text(type).Text(before).Text("COMM").BE32(commSize);
        b.BE16(channels).BE32(3).BE16(bits).Text(rate).Text(commTail).Text(between);
        b.Text("SSND").BE32(ssndSize).BE32(0).BE32(0).BE16(1).BE16(2).BE16(0xFFFF);
        return b.Str();
    }
};
const std::vector<int> kThreeValues = {16, 32, -16};

TEST_F(RowFiles, RawSettingsOfAnyKindAreSurvived) {
    const std::string path = Store("r", "123");
    const LSoundSource empty = LRawFile::OpenSource(Store("e", "").c_str(), {8000, 1, kRawPcm16});
    EXPECT_EQ(empty->GetEndSample(), 0);
    EXPECT_EQ(ReadAll(empty).size(), 0U);
    for (const int codec : {-1, 9, INT_MAX, INT_MIN}) {
        EXPECT_EQ(LRawFile::OpenSource(path.c_str(), {8000, 1, codec})->Status(), kPlaceholder);
        EXPECT_EQ(LRawFile::OpenSink(path.c_str(), {8000, 1, codec})->Status(), 1);
    }
    EXPECT_EQ(Load(path), "123");
    for (int codec = 0; codec <= 8; ++codec) {
        for (const std::string& none : {Path("no"), Path("")})
            EXPECT_EQ(LRawFile::OpenSource(none.c_str(), {8000, 1, codec})->Status(), kCannotOpen);
        EXPECT_EQ(LRawFile::OpenSink(Path("no/no").c_str(), {8000, 1, codec})->WriteError(),
                  ENOENT);
        LSoundSink full = LRawFile::OpenSink("/dev/full", {8000, 1, codec});
        WriteAll(full, TestSignal(64));
        EXPECT_EQ(full->Finish(), ENOSPC) << codec;
    }
    const LSoundSource odd = LRawFile::OpenSource(path.c_str(), {INT_MIN, 0, kRawSigned8});
    EXPECT_EQ(odd->Status(), kInvalidFormat);
    EXPECT_EQ(ReadAll(odd).size(), 3U);
}

TEST_F(RowFiles, RawSinksStepBackButNotForward) {
    const std::string path = Path("r");
    {
        LSoundSink sink = LRawFile::OpenSink(path.c_str(), {8000, 1, kRawSigned8});
        WriteAll(sink, {4096, 8192, 12288, 16384});
        sink->Seek(9);
        EXPECT_EQ(sink->FramesWritten(), 4);
        sink->Seek(2);
        WriteAll(sink, {-4096});
    }
    EXPECT_EQ(Load(path), "\x01\x02\xFF");
    const LSoundSource source = LRawFile::OpenSource(path.c_str(), {8000, 1, kRawSigned8});
    source->Seek(-2);
    EXPECT_EQ(Next(source, 4), (std::vector<int>{0, 0, 4096, 8192}));
    std::ofstream(path, std::ios::app) << "\x05";
    EXPECT_EQ(source->GetEndSample(), 4);  // a file that grows is followed
    EXPECT_EQ(Next(source, 4), (std::vector<int>{-4096, 20480, 0, 0}));
}

TEST_F(RowFiles, AuHeaders) {
    const std::uint32_t big = 0xFFFFFFFF;
    const std::tuple<const char*, std::string, int, int> cases[] = {
        {"mu-law", AuHeader(24, 4, 1, 8000, 1), kGood, 4},
        {"8 bits", AuHeader(24, 4, 2, 8000, 2), kGood, 2},
        {"16 bits", AuHeader(24, 5, 3, 8000, 1), kGood, 2},
        {"A-law", AuHeader(24, 0, 27, 8000, 1), kGood, 0},
        {"size unknown", AuHeader(24, big, 3, 8000, 1), kGood, 2},
        {"size 2^31", AuHeader(24, 1U << 31, 1, 8000, 1), kGood, INT_MAX},
        {"header size not looked at", AuHeader(big, 4, 1, 8000, 1), kGood, 4},
        {"float", AuHeader(24, 4, 6, 8000, 1), kUnsupported, 0},
        {"rate 0", AuHeader(24, 4, 1, 0, 1), kInvalidFormat, 0},
        {"rate 2^32-1", AuHeader(24, 4, 1, big, 1), kInvalidFormat, 0},
        {"no channels", AuHeader(24, 4, 1, 8000, 0), kInvalidFormat, 0},
        {"256 channels", AuHeader(24, 4, 1, 8000, 256), kInvalidFormat, 0},
        {"magic", "x" + AuHeader(24, 4, 1, 8000, 1).substr(1), kInvalidFormat, 0},
    };
    for (const auto& [name, header, status, frames] : cases) {
        const std::string path = Store("a.au", header + "\x01\x02\x03\x04");
        const LSoundSource source = LAuFile::OpenSource(path.c_str());
        EXPECT_EQ(source->Status(), status) << name;
        EXPECT_EQ(source->GetEndSample(), frames) << name;
    }
    for (std::size_t size = 0; size < 24; ++size) {
        const std::string path = Store("t.au", AuHeader(24, 4, 1, 8000, 1).substr(0, size));
        EXPECT_EQ(LAuFile::OpenSource(path.c_str())->Status(), kInvalidFormat) << size;
    }
    const std::string noted = AuHeader(32, 12, 2, 8000, 1) + "annotate\x01\x02\x03\x04";
    EXPECT_EQ(ReadAll(LAuFile::OpenSource(Store("n.au", noted).c_str()))[0], 'a' * 4096);
    EXPECT_EQ(LAuFile::OpenSource(Path("missing").c_str())->Status(), kCannotOpen);
}

TEST_F(RowFiles, AiffOneChangedFieldACase) {
    const auto open = [this](const Aiff& aiff) {
        return LAifFile::OpenSource(Store("a.aif", aiff.Build()).c_str());
    };
    const auto expect = [&](const Aiff& aiff, int status, int rate, const std::string& what) {
        const LSoundSource source = open(aiff);
        EXPECT_EQ(source->Status(), status) << what;
        if (status != kGood)
            return;
        EXPECT_EQ(source->SampleRate(), rate) << what;
        EXPECT_EQ(ReadAll(source), kThreeValues) << what;
    };
    const std::tuple<std::uint32_t Aiff::*, std::vector<std::uint32_t>, int> numbers[] = {
        {&Aiff::commSize, {0, 17, 0x7FFFFFFF, 1U << 31, 0xFFFFFFFF}, kInvalidFormat},
        {&Aiff::channels, {0, 256, 65535}, kInvalidFormat},
        {&Aiff::bits, {9, 16}, kGood},
        {&Aiff::bits, {0}, kInvalidFormat},
        {&Aiff::bits, {17, 65535}, kUnsupported},
        {&Aiff::ssndSize, {14, 15, 0xFFFFFFFF}, kGood}};
    for (const auto& [field, values, status] : numbers) {
        for (const std::uint32_t value : values) {
            Aiff aiff;
            aiff.*field = value;
            expect(aiff, status, 44100, std::to_string(value));
        }
    }
    const std::tuple<std::string Aiff::*, std::string, int, int> texts[] = {
        {&Aiff::form, "RIFF", kInvalidFormat, 0},
        {&Aiff::type, "AIFC", kInvalidFormat, 0},
        {&Aiff::before, std::string("NAME\0\0\0\3abc", 11), kGood, 44100},  // no pad byte
        {&Aiff::before, std::string("SSND\0\0\0\1x", 9), kGood, 44100},
        {&Aiff::before, "NAME\x7F\xFF\xFF\xFF", kInvalidFormat, 0},
        {&Aiff::between, std::string("NAME\x80\0\0\0", 8), kInvalidFormat, 0},
        {&Aiff::rate, Rate(0, 0), kInvalidFormat, 0},
        {&Aiff::rate, Rate(0x7FFF, 1U << 31), kInvalidFormat, 0},  // infinity
        {&Aiff::rate, Rate(0x7FFF, 3U << 30), kInvalidFormat, 0},  // not a number
        {&Aiff::rate, Rate(0x401E, 1U << 31), kInvalidFormat, 0},  // 2^31
        {&Aiff::rate, Rate(0x401D, 0xFFFFFFFE), kGood, INT_MAX},
    };
    for (const auto& [field, value, status, rate] : texts) {
        Aiff aiff;
        aiff.*field = value;
        expect(aiff, status, rate, testing::PrintToString(value));
    }
    expect({.commTail = "abc", .commSize = 21}, kGood, 44100, "longer COMM");
    EXPECT_EQ(open({.ssndSize = 7})->GetEndSample(), 0);
    EXPECT_EQ(ReadAll(open({.bits = 8}))[1], 4096);
    const std::string whole = Aiff().Build();
    for (std::size_t size = 0; size < whole.size() - 6; ++size) {
        const std::string path = Store("t.aif", whole.substr(0, size));
        EXPECT_EQ(LAifFile::OpenSource(path.c_str())->Status(), kInvalidFormat) << size;
    }
    EXPECT_EQ(LAifFile::OpenSource(Path("").c_str())->Status(), kCannotOpen);
}

TEST_F(RowFiles, AiffSizesAreUnknownUntilTheEnd) {
    const std::string path = Path("w.aif");
    LSoundSink sink = OpenAIFFSink(path.c_str(), 44100, 2);
    const auto sizes = [&] {
        const std::string header = Load(path);
        return header.substr(4, 4) + header.substr(22, 4) + header.substr(42, 4);
    };
    EXPECT_EQ(sizes(), Bytes().BE32(46).BE32(0).BE32(0xFFFFFFFF).Str());
    WriteAll(sink, TestSignal(20));
    sink.Close();
    EXPECT_EQ(sizes(), Bytes().BE32(86).BE32(10).BE32(40).Str());
}

}  // namespace
