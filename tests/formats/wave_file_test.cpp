#include "formats/wave_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "formats/wave_codec_names.h"
#include "tests/formats/format_files.h"
#include "tests/support/log_witness.h"

namespace {

using namespace SoundStatus;

struct Wave {  // a header whose fields can be changed one at a time
    std::uint32_t riffSize = 36;
    std::uint32_t fmtSize = 16;
    std::uint32_t tag = 1, channels = 1, rate = 8000, align = 2, bits = 16;
    std::uint32_t dataSize = 8;
    std::string beforeFmt, beforeData;

    std::string Build(const std::string& samples) const {
        Bytes b;
        b.Text("RIFF").LE32(riffSize).Text("WAVE").Text(beforeFmt).Text("fmt ").LE32(fmtSize);
        Bytes f;
        f.LE16(tag).LE16(channels).LE32(rate).LE32(rate * align).LE16(align).LE16(bits);
        const std::string fields = f.Fill(9000).Str();
        return b.Text(fields.substr(0, std::min(fmtSize, 9000U)))
            .Text(beforeData)
            .Text("data")
            .LE32(dataSize)
            .Text(samples)
            .Str();
    }
};

std::string Chunk(const std::string& id, std::uint32_t size, const std::string& body) {
    return Bytes().Text(id).LE32(size).Text(body).Str();
}

const std::string kFourSamples = Bytes().LE16(1).LE16(2).LE16(3).LE16(0xFFFF).Str();
const std::vector<int> kFourValues = {16, 32, 48, -16};

class WaveFile : public FormatTest {};

TEST_F(WaveFile, OneChangedFieldACase) {
    const auto expect = [this](const Wave& wave, int status, const std::string& what) {
        const std::string path = Store("w.wav", wave.Build(kFourSamples));
        const LSoundSource source = LWaveFile::OpenSource(path.c_str());
        EXPECT_EQ(source->Status(), status) << what;
        if (status == kGood) {
            EXPECT_EQ(ReadAll(source), kFourValues) << what;
        }
    };
    constexpr std::uint32_t kBig = 0xFFFFFFFF;
    const std::tuple<std::uint32_t Wave::*, std::vector<std::uint32_t>, int> cases[] = {
        {&Wave::fmtSize, {18, 20, 8192}, kGood},
        {&Wave::fmtSize, {0, 15, 8193, 0x7FFFFFFF, 0x80000000, kBig}, kInvalidFormat},
        {&Wave::channels, {0, 256, 65535}, kInvalidFormat},
        {&Wave::rate, {1, 196000}, kGood},
        {&Wave::rate, {0, 196001, 0x7FFFFFFF, kBig}, kInvalidFormat},
        {&Wave::tag, {0, 3, 7, 0xFFFE, 0xFFFF}, kUnsupported},
        {&Wave::bits, {9, 12}, kGood},
        {&Wave::bits, {17, 24, 65535}, kUnsupported},
        {&Wave::bits, {0}, kInvalidFormat},
        {&Wave::align, {0, 65535}, kGood},
        {&Wave::riffSize, {0, 1, 0x7FFFFFFF, 0x80000000, kBig}, kGood},
    };
    for (const auto& [field, values, status] : cases) {
        for (const std::uint32_t value : values) {
            Wave wave;
            wave.*field = value;
            expect(wave, status,
                   std::to_string(value) + ", where it was " + std::to_string(Wave().*field));
        }
    }
    const std::string odd = Chunk("junk", 3, Bytes().Text("abc").U8(0).Str());
    const std::pair<std::string, int> chunks[] = {
        {Chunk("LIST", 0, "") + odd + Chunk("data", 2, "xx"), kGood},
        {Chunk("LIST", 0x7FFFFFFF, ""), kInvalidFormat},
        {Chunk("LIST", 0x80000000, ""), kInvalidFormat},
        {Chunk("LIST", 1000, "past the end"), kInvalidFormat},
    };
    for (const auto& [chunk, status] : chunks) {
        Wave before;
        before.beforeFmt = chunk;
        expect(before, status, "before fmt: " + chunk);
        Wave between;
        between.beforeData = status == kGood ? odd + Chunk("fmt ", 4, "junk") : chunk;
        expect(between, status, "before data: " + chunk);  // of two fmt chunks the first counts
    }
    // Whole foreign chunks may stand in front, but their header is read twelve bytes at a time.
    for (const auto& [front, status] : {std::pair{Chunk("odds", 7, "1234567 "), kGood},
                                        std::pair{Chunk("odds", 2, "ab"), kInvalidFormat}}) {
        const std::string path = Store("c.wav", front + Wave().Build(kFourSamples));
        EXPECT_EQ(LWaveFile::OpenSource(path.c_str())->Status(), status);
    }
}

TEST_F(WaveFile, WhatIsNotAFileOfSamplesIsRefused) {
    const std::string fifo = Path("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string& path : {fifo, Path(""), Path("missing"), std::string("/dev/zero")}) {
        EXPECT_EQ(LWaveFile::OpenSource(path.c_str())->Status(), kCannotOpen) << path;
        EXPECT_FALSE(LWaveFile::TestPCM(path.c_str())) << path;
    }
    const std::string whole = Wave().Build(kFourSamples);
    for (std::size_t size = 0; size < whole.size() - kFourSamples.size(); ++size)
        EXPECT_EQ(LWaveFile::OpenSource(Store("s.wav", whole.substr(0, size)).c_str())->Status(),
                  kInvalidFormat);
    const std::string noFmt = std::string(whole).replace(12, 4, "nope");
    EXPECT_EQ(LWaveFile::OpenSource(Store("s.wav", noFmt).c_str())->Status(), kInvalidFormat);
}

TEST_F(WaveFile, SeeksKeepTheirPositionAndLeadInIsSilent) {
    const std::vector<int> signal = TestSignal(100);
    const std::string path = Path("s.wav");
    WriteAll(LWaveFile::OpenSinkPCM(path.c_str(), 8000, 1, 16, 0), signal);
    const LSoundSource source = LWaveFile::OpenSource(path.c_str());
    for (const int start : {-40, -1, 0, 1, 60, 99, 100, 5000, -2147483647, 2147483647}) {
        source->Seek(start);
        EXPECT_EQ(source->GetPositionSample(), start);
        std::vector<int> expected(100);
        for (std::int64_t frame = std::max(start, 0); frame - start < 100 && frame < 100; ++frame)
            expected[static_cast<std::size_t>(frame - start)] =
                signal[static_cast<std::size_t>(frame)];
        EXPECT_EQ(Next(source, 100), expected) << start;
    }
    EXPECT_EQ(source->GetPositionSample(), 2147483647);  // no way past the last frame number
}

TEST_F(WaveFile, SinksOnExistingFilesKeepTheFramesAskedFor) {
    const std::vector<int> signal = TestSignal(500);
    const std::string path = Path("k.wav");
    const auto make = [&] {
        WriteAll(LWaveFile::OpenSinkPCM(path.c_str(), 8000, 1, 16, 0), signal);
    };
    make();
    EXPECT_EQ(LWaveFile::OpenSinkPCM(path.c_str(), 8000, 1, 16, 1000)->FramesWritten(), 1000);
    EXPECT_EQ(Load(path).size(), 46U + 1000U);
    make();
    WriteAll(LWaveFile::OpenSinkPCM(path.c_str(), 8000, 1, 16, 100), {16, 32});
    std::vector<int> expected(signal.begin(), signal.begin() + 100);
    expected.insert(expected.end(), {16, 32});
    EXPECT_EQ(ReadAll(LWaveFile::OpenSource(path.c_str())), expected);
    LSoundSink sink = LWaveFile::OpenSinkPCM(path.c_str(), 8000, 1, 16, -3);
    EXPECT_EQ(Load(path).size(), 46U);
    WriteAll(sink, signal);
    sink->Seek(501);  // forward: ignored
    EXPECT_EQ(sink->FramesWritten(), 500);
    sink->Seek(10);
    WriteAll(sink, {-16});
    sink.Close();
    expected.assign(signal.begin(), signal.begin() + 10);
    expected.push_back(-16);
    EXPECT_EQ(ReadAll(LWaveFile::OpenSource(path.c_str())), expected);
}

// The reader may meet the end in the middle of a frame; the next one must not swap the channels.
TEST_F(WaveFile, AGrowingFileKeepsItsChannelsApart) {
    Wave wave;
    wave.channels = 2;
    wave.dataSize = 0xFFFFFFFF;
    const std::string path = Store("o.wav", wave.Build(Bytes().LE16(1).LE16(2).LE16(3).Str()));
    const LSoundSource source = LWaveFile::OpenSource(path.c_str());
    EXPECT_EQ(Next(source, 2), (std::vector<int>{16, 32, 48, 0}));
    std::ofstream(path, std::ios::binary | std::ios::app) << Bytes().LE16(4).LE16(5).LE16(6).Str();
    EXPECT_EQ(Next(source, 2), (std::vector<int>{80, 96, 0, 0}));
}

TEST_F(WaveFile, HeadersAreWholeAndLeaveSizesBeyondTheirFieldsUnknown) {
    // A sparse file stands in for 4 GiB of samples: the start frame puts the counter there.
    const std::tuple<int, std::uint32_t, std::uint32_t> cases[] = {
        {0x3FFFFFF5, 0xFFFFFFFA, 0xFFFFFFD4},
        {0x3FFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF},
        {0x20000000, 0x80000026, 0x80000000}};
    for (const auto& [frames, riff, data] : cases) {
        const std::string path = Path("big.wav");
        LWaveFile::OpenSinkPCM(path.c_str(), 48000, 2, 16, frames);  // and closed at once
        std::string header(46, '\0');
        std::ifstream(path, std::ios::binary).read(header.data(), 46);
        EXPECT_EQ(header.substr(4, 4), Bytes().LE32(riff).Str()) << frames;
        EXPECT_EQ(header.substr(20, 16),
                  Bytes().LE16(1).LE16(2).LE32(48000).LE32(192000).LE16(4).LE16(16).Str());
        EXPECT_EQ(header.substr(42, 4), Bytes().LE32(data).Str()) << frames;
    }
}

TEST_F(WaveFile, SinksThatCannotWriteSaySo) {
    const std::string fifo = Path("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(LWaveFile::OpenSinkPCM(fifo.c_str(), 8000, 1, 16, 0)->Status(), 1);
    const std::string path = Path("x.wav");
    EXPECT_EQ(LWaveFile::OpenSinkPCM(path.c_str(), 8000, 1, 24, 0)->Status(), 1);
    EXPECT_EQ(LWaveFile::OpenSink(path.c_str(), LWaveFileFormat(8000, 1, "ALAW"))->Status(), 1);
    EXPECT_FALSE(std::filesystem::exists(path));
    LSoundSink none = LWaveFile::OpenSinkPCM(path.c_str(), 8000, 0, 16, 0);
    EXPECT_EQ(none->Status(), 1);
    WriteAll(none, {16, 32});
}

TEST_F(WaveFile, TheDefaultFormatIsKeptWhole) {
    const ScopedVariable home("HOME", folder_.Path().c_str());
    LWaveFileFormat stored(22050, 1, "PCM8");
    stored.extra[1009] = 7;
    LWaveFileFormat loaded(44100, 2, "");
    LoadDefaultWaveFormat(loaded);  // nothing there yet
    EXPECT_EQ(loaded.samplesPerSecond, 44100U);
    EXPECT_TRUE(SaveDefaultWaveFormat(stored));
    LoadDefaultWaveFormat(loaded);
    EXPECT_EQ(std::memcmp(&loaded, &stored, 1028), 0);
    const std::string path = Path(".quillon/lectora/WavCodec.wff");
    const std::string bytes = Load(path);
    EXPECT_EQ(bytes.size(), 1028U);
    EXPECT_EQ(bytes.substr(0, 18),
              Bytes().LE16(1).LE16(1).LE32(22050).LE32(22050).LE16(1).LE16(8).LE16(0).Str());
    std::ofstream(path, std::ios::binary) << bytes.substr(0, 4);  // a short file
    LWaveFileFormat half(44100, 2, "");
    LoadDefaultWaveFormat(half);
    EXPECT_EQ(half.channels, 1);
    EXPECT_EQ(half.samplesPerSecond, 44100U);
    const std::string wild[] = {
        Bytes().LE16(1).LE16(1).LE32(0x7FFFFFFF).Str(), Bytes().LE16(1).LE16(1).LE32(0).Str(),
        Bytes().LE16(1).LE16(3).LE32(8000).Str(), bytes.substr(0, 14) + Bytes().LE16(24).Str()};
    for (const std::string& record : wild) {  // that no writer can write
        const LogWitness log;
        std::ofstream(path, std::ios::binary) << record;
        const LWaveFileFormat before(44100, 2, "");
        LWaveFileFormat format = before;
        LoadDefaultWaveFormat(format);
        EXPECT_EQ(std::memcmp(&format, &before, 1028), 0);
        EXPECT_NE(log.told.find("not used: " + path), std::string::npos) << log.told;
    }
}

TEST_F(WaveFile, FullScaleDoesNotWrapInEightBits) {
    const std::string path = Store("8.wav", "");
    const LSoundSink sink = LWaveFile::OpenSink(path.c_str(), LWaveFileFormat(8000, 1, "pcm8"));
    constexpr int kSamples[] = {kMaxPcm16Peak, 0, -524288};
    sink->Write(kSamples, 3);
    ASSERT_EQ(sink->Finish(), 0);
    EXPECT_EQ(Load(path).substr(46, 3), "\xFF\x80" + std::string(1, '\0'));
}

TEST_F(WaveFile, FormatRecordsAndCodecNames) {
    const std::tuple<const char*, int, int> formats[] = {{"PCM16", 1, 2}, {"pcm8", 1, 1},
                                                         {"Alaw", 6, 1},  {"ULAW", 7, 1},
                                                         {"MuLaw", 7, 1}, {"", 1, 2}};
    for (const auto& [name, tag, bytes] : formats) {
        const LWaveFileFormat format(22050, 2, name);
        EXPECT_EQ(format.tag, tag) << name;
        EXPECT_EQ(format.bitsPerSample, 8 * bytes) << name;
        EXPECT_EQ(format.blockAlign, 2 * bytes) << name;
        EXPECT_EQ(format.averageBytesPerSecond, 44100U * static_cast<unsigned>(bytes)) << name;
    }
    Wave wave;
    wave.tag = 0x55;
    wave.fmtSize = 20;
    const std::string path = Store("n.wav", wave.Build(""));
    WAVEFORMATEX* format = nullptr;
    ASSERT_TRUE(LGetWaveFormatEx(path.c_str(), &format));
    EXPECT_EQ(format->wFormatTag, 0x55);
    EXPECT_EQ(format->nSamplesPerSec, 8000U);
    EXPECT_EQ(format->cbSize, 0);
    FreeWaveFormatEx(format);
    EXPECT_FALSE(LWaveFile::TestPCM(path.c_str()));
    char name[kWaveCodecNameSize];
    const std::pair<std::uint32_t, const char*> codecs[] = {
        {0x55, "MPEG-1 Layer 3 (MP3)"},
        {0xFFFF, "In Development / Unregistered"},
        {0x1234, "Microsoft Unknown Wave Format"}};
    for (const auto& [tag, expected] : codecs) {
        wave.tag = tag;
        LGetWaveFileCodecName(name, Store("n.wav", wave.Build("")).c_str());
        EXPECT_STREQ(name, expected);
    }
    LGetWaveFileCodecName(name, Path("missing").c_str());
    EXPECT_STREQ(name, "Microsoft Unknown Wave Format");
    for (std::size_t i = 0; i < kWaveCodecCount; ++i) {
        EXPECT_LT(std::strlen(WaveCodecs[i].name), kWaveCodecNameSize);
        EXPECT_TRUE(i == 0 || WaveCodecs[i - 1].tag < WaveCodecs[i].tag) << i;
    }
}

}  // namespace
