// An independent reader and writer, libsndfile, on the same files. What we are held to is the
// bytes' meaning, so each comparison goes through one of theirs and one of ours.
#include <sndfile.h>

#include <cmath>
#include <functional>

#include "formats/aiff_file.h"
#include "formats/au_file.h"
#include "formats/raw_file.h"
#include "formats/wave_file.h"
#include "tests/formats/format_files.h"

namespace {

constexpr int kRate = 22050;
constexpr int kChannels = 2;
constexpr int kHalfStep = 8192 + 64;  // of G.711 near full scale, and some for others' rounding

struct Format {
    const char* name;
    int sndfile;
    std::function<LSoundSink(const char*)> sink;
    std::function<LSoundSource(const char*)> source;
    int tolerance = 0;   // in 16-bit steps
    int lostFrames = 0;  // frames that readers miss at the end of our files
};

Format Raw(const char* name, int codec, int sndfile, int tolerance) {
    const LRawSettings settings{kRate, kChannels, codec};
    return {name, SF_FORMAT_RAW | sndfile,
            [=](const char* p) { return LRawFile::OpenSink(p, settings); },
            [=](const char* p) { return LRawFile::OpenSource(p, settings); }, tolerance};
}

Format Au(const char* name, int codec, int sndfile, int tolerance) {
    return {name, SF_FORMAT_AU | sndfile,
            [=](const char* p) {
                LAuSettings settings{codec, kRate, kChannels};
                return OpenAuSink(p, settings);
            },
            LAuFile::OpenSource, tolerance};
}

Format Wav(const char* name, unsigned short bits, int sndfile) {
    return {name, SF_FORMAT_WAV | sndfile,
            [=](const char* p) { return LWaveFile::OpenSinkPCM(p, kRate, kChannels, bits, 0); },
            LWaveFile::OpenSource};
}

std::vector<Format> Formats() {
    // mu-law: segment 5 lies one 14-bit step low here. Big-endian floats: full scale is 32767 here,
    // 32768 there.
    return {Wav("wav 16", 16, SF_FORMAT_PCM_16),
            Wav("wav 8", 8, SF_FORMAT_PCM_U8),
            Au("au 16", kAuPcm16, SF_FORMAT_PCM_16, 0),
            Au("au 8", kAuPcm8, SF_FORMAT_PCM_S8, 0),
            Au("au A-law", kAuALaw, SF_FORMAT_ALAW, 0),
            Au("au mu-law", kAuMuLaw, SF_FORMAT_ULAW, 4),
            {"aiff 16", SF_FORMAT_AIFF | SF_FORMAT_PCM_16,
             [](const char* p) { return OpenAIFFSink(p, kRate, kChannels); }, LAifFile::OpenSource,
             0, 2},
            {"aiff 8", SF_FORMAT_AIFF | SF_FORMAT_PCM_S8, {}, LAifFile::OpenSource},
            Raw("raw 16", kRawPcm16, SF_FORMAT_PCM_16 | SF_ENDIAN_LITTLE, 0),
            Raw("raw 16 big", kRawPcm16BigEndian, SF_FORMAT_PCM_16 | SF_ENDIAN_BIG, 0),
            Raw("raw s8", kRawSigned8, SF_FORMAT_PCM_S8, 0),
            Raw("raw u8", kRawUnsigned8, SF_FORMAT_PCM_U8, 0),
            Raw("raw mu-law", kRawMuLaw, SF_FORMAT_ULAW, 4),
            Raw("raw A-law", kRawALaw, SF_FORMAT_ALAW, 0),
            Raw("raw float", kRawFloat, SF_FORMAT_FLOAT | SF_ENDIAN_LITTLE, 1),
            Raw("raw float big", kRawFloatBigEndian, SF_FORMAT_FLOAT | SF_ENDIAN_BIG, 2)};
}

class Witnesses : public FormatTest {
protected:
    static std::vector<int> BySndfile(const std::string& path, const Format& format) {
        SF_INFO info{};
        if ((format.sndfile & SF_FORMAT_TYPEMASK) == SF_FORMAT_RAW)
            info = {0, kRate, kChannels, format.sndfile, 0, 0};
        SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
        EXPECT_NE(file, nullptr) << format.name;
        EXPECT_EQ(info.samplerate, kRate) << format.name;
        EXPECT_EQ(info.channels, kChannels) << format.name;
        std::vector<float> floats(static_cast<std::size_t>(info.frames * kChannels));
        EXPECT_EQ(sf_readf_float(file, floats.data(), info.frames), info.frames);
        sf_close(file);
        std::vector<int> words;
        words.reserve(floats.size());
        for (const float value : floats)
            words.push_back(static_cast<int>(std::lrint(value * 32768.0F)));
        return words;
    }
    static void SaveBySndfile(const std::string& path, int format, int rate, int channels,
                              const std::vector<short>& words) {
        SF_INFO info{0, rate, channels, format, 0, 0};
        SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
        ASSERT_NE(file, nullptr);
        sf_command(file, SFC_SET_SCALE_INT_FLOAT_WRITE, nullptr, SF_TRUE);
        sf_write_short(file, words.data(), static_cast<sf_count_t>(words.size()));
        sf_close(file);
    }
};

TEST_F(Witnesses, OurFilesMeanTheSameToThemAndTheirsToUs) {
    std::vector<int> signal = TestSignal(20000 * kChannels);
    std::vector<short> words;
    for (int& sample : signal) {  // away from the ends, where 8 bits round past full scale
        sample = sample / 16 * 31 / 32 * 16;
        words.push_back(static_cast<short>(sample / 16));
    }
    const auto check = [&](const std::string& path, const Format& format, int lostFrames) {
        const LSoundSource source = format.source(path.c_str());
        EXPECT_EQ(source->SampleRate(), kRate) << format.name;
        const std::vector<int> ours = ReadAll(source, 1111);
        const std::vector<int> theirs = BySndfile(path, format);
        const auto lost = static_cast<std::size_t>(lostFrames * kChannels);
        ASSERT_EQ(ours.size() + lost, signal.size()) << format.name;
        ASSERT_EQ(theirs.size(), ours.size()) << format.name;
        for (std::size_t i = 0; i < ours.size(); ++i) {
            ASSERT_NEAR(ours[i], signal[i], kHalfStep) << format.name;
            ASSERT_LE(std::abs(theirs[i] - ours[i] / 16), format.tolerance)
                << format.name << ", sample " << i;
        }
    };
    for (const Format& format : Formats()) {
        const std::string path = Path("theirs");
        SaveBySndfile(path, format.sndfile, kRate, kChannels, words);
        check(path, format, 0);
        if (!format.sink)
            continue;
        const std::string ours = Path("ours");
        std::filesystem::remove(ours);
        WriteAll(format.sink(ours.c_str()), signal, 3333);
        check(ours, format, format.lostFrames);
    }
}

TEST_F(Witnesses, G711EncodingOverTheWholeDomain) {
    std::vector<short> words;
    for (int value = -32768; value < 32768; ++value)
        words.push_back(static_cast<short>(value));
    SaveBySndfile(Path("mu"), SF_FORMAT_RAW | SF_FORMAT_ULAW, 8000, 1, words);
    SaveBySndfile(Path("a"), SF_FORMAT_RAW | SF_FORMAT_ALAW, 8000, 1, words);
    const std::string muLaw = Load(Path("mu"));
    const std::string aLaw = Load(Path("a"));
    int shifted = 0;
    for (std::size_t i = 0; i < 65536; ++i) {
        LSFALAW a;
        a.Set(words[i] * 16);
        ASSERT_EQ(a.bits, static_cast<std::uint8_t>(aLaw[i])) << words[i];
        LSFULAW mu;
        mu.Set(words[i] * 16);
        const int difference = mu.bits - static_cast<std::uint8_t>(muLaw[i]);
        shifted += difference != 0 ? 1 : 0;
        const int segment = ~mu.bits >> 4 & 7;
        ASSERT_TRUE(difference == 0 || (std::abs(difference) == 1 && segment == 0) ||
                    (difference == -1 && segment == 5))
            << words[i];
    }
    // Segment 5 starts one step early (16 intervals of 4 values), segment 0 counts from zero (15 of
    // 4); both signs.
    EXPECT_EQ(shifted, 2 * (16 * 4 + 15 * 4));
}

}  // namespace
