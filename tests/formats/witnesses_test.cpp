// Independent readers and writers on the same files: libsndfile, sox and ffmpeg. What they are held
// to is the bytes' meaning, so each comparison goes through one of them and one of ours.
#include <sndfile.h>
#include <sys/wait.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <numbers>
#include <thread>

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
    const char* extension;
    int sndfile;
    const char* sox;     // after -t
    const char* ffmpeg;  // output encoding, and input encoding of headerless files
    std::function<LSoundSink(const char*)> sink;  // empty: read only
    std::function<LSoundSource(const char*)> source;
    int tolerance;   // in 16-bit steps
    int lostFrames;  // frames that readers miss at the end of our files
};

Format Raw(const char* name, int codec, int sndfile, const char* sox, const char* ffmpeg,
           int tolerance) {
    const LRawSettings settings{kRate, kChannels, codec};
    return {name,
            "raw",
            SF_FORMAT_RAW | sndfile,
            sox,
            ffmpeg,
            [=](const char* p) { return LRawFile::OpenSink(p, settings); },
            [=](const char* p) { return LRawFile::OpenSource(p, settings); },
            tolerance,
            0};
}

Format Au(const char* name, int codec, int sndfile, const char* sox, const char* ffmpeg,
          int tolerance) {
    return {name,
            "au",
            SF_FORMAT_AU | sndfile,
            sox,
            ffmpeg,
            [=](const char* p) {
                LAuSettings settings{codec, kRate, kChannels};
                return OpenAuSink(p, settings);
            },
            LAuFile::OpenSource,
            tolerance,
            0};
}

Format Wav(const char* name, unsigned short bits, int sndfile, const char* sox,
           const char* ffmpeg) {
    return {name,
            "wav",
            SF_FORMAT_WAV | sndfile,
            sox,
            ffmpeg,
            [=](const char* p) { return LWaveFile::OpenSinkPCM(p, kRate, kChannels, bits, 0); },
            LWaveFile::OpenSource,
            0,
            0};
}

std::vector<Format> Formats() {
    // mu-law: segment 5 lies one 14-bit step low here. Big-endian floats: full scale is 32767 here,
    // 32768 there.
    return {
        Wav("wav 16", 16, SF_FORMAT_PCM_16, "wav -e signed -b 16", "-c:a pcm_s16le"),
        Wav("wav 8", 8, SF_FORMAT_PCM_U8, "wav -e unsigned -b 8", "-c:a pcm_u8"),
        Au("au 16", kAuPcm16, SF_FORMAT_PCM_16, "au -e signed -b 16", "-c:a pcm_s16be", 0),
        Au("au 8", kAuPcm8, SF_FORMAT_PCM_S8, "au -e signed -b 8", "-c:a pcm_s8", 0),
        Au("au A-law", kAuALaw, SF_FORMAT_ALAW, "au -e a-law", "-c:a pcm_alaw", 0),
        Au("au mu-law", kAuMuLaw, SF_FORMAT_ULAW, "au -e u-law", "-c:a pcm_mulaw", 4),
        {"aiff 16", "aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, "aiff -b 16", "-c:a pcm_s16be",
         [](const char* p) { return OpenAIFFSink(p, kRate, kChannels); }, LAifFile::OpenSource, 0,
         2},
        {"aiff 8",
         "aiff",
         SF_FORMAT_AIFF | SF_FORMAT_PCM_S8,
         "aiff -b 8",
         "-c:a pcm_s8",
         {},
         LAifFile::OpenSource,
         0,
         0},
        Raw("raw 16", kRawPcm16, SF_FORMAT_PCM_16 | SF_ENDIAN_LITTLE, "raw -e signed -b 16 -L",
            "-f s16le", 0),
        Raw("raw 16 big", kRawPcm16BigEndian, SF_FORMAT_PCM_16 | SF_ENDIAN_BIG,
            "raw -e signed -b 16 -B", "-f s16be", 0),
        Raw("raw s8", kRawSigned8, SF_FORMAT_PCM_S8, "raw -e signed -b 8", "-f s8", 0),
        Raw("raw u8", kRawUnsigned8, SF_FORMAT_PCM_U8, "raw -e unsigned -b 8", "-f u8", 0),
        Raw("raw mu-law", kRawMuLaw, SF_FORMAT_ULAW, "raw -e u-law -b 8", "-f mulaw", 4),
        Raw("raw A-law", kRawALaw, SF_FORMAT_ALAW, "raw -e a-law -b 8", "-f alaw", 0),
        Raw("raw float", kRawFloat, SF_FORMAT_FLOAT | SF_ENDIAN_LITTLE, "raw -e float -b 32 -L",
            "-f f32le", 1),
        Raw("raw float big", kRawFloatBigEndian, SF_FORMAT_FLOAT | SF_ENDIAN_BIG,
            "raw -e float -b 32 -B", "-f f32be", 2),
    };
}

class Witnesses : public FormatTest {
protected:
    Witnesses() {
        signal_ = TestSignal(20000 * kChannels);
        for (int& sample : signal_)  // away from the ends, where 8 bits round past full scale
            sample = sample / 16 * 31 / 32 * 16;
        Bytes words;
        for (const int sample : signal_)
            words.LE16(static_cast<std::uint32_t>(sample / 16));
        Store("pcm", words.Str());
    }

    static void Run(const std::string& command) {
        const int status = std::system(command.c_str());
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << command;
    }
    std::string Pcm(const std::string& name) const {  // a raw file of 16-bit words for sox
        return " -t raw -e signed -b 16 -L -r 22050 -c 2 " + Path(name) + " ";
    }
    std::vector<int> Words(const std::string& name) const {
        const std::string bytes = Load(Path(name));
        std::vector<int> words(bytes.size() / 2);
        for (std::size_t i = 0; i < words.size(); ++i)
            words[i] = static_cast<std::int16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                                 static_cast<unsigned char>(bytes[2 * i + 1]) << 8);
        return words;
    }
    static std::vector<int> BySndfile(const std::string& path, const Format& format) {
        SF_INFO info{};
        if ((format.sndfile & SF_FORMAT_TYPEMASK) == SF_FORMAT_RAW)
            info = {0, kRate, kChannels, format.sndfile, 0, 0};
        SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
        EXPECT_NE(file, nullptr) << format.name;
        sf_command(file, SFC_SET_SCALE_FLOAT_INT_READ, nullptr, SF_FALSE);
        std::vector<int> words;
        const bool isFloat = (format.sndfile & SF_FORMAT_SUBMASK) == SF_FORMAT_FLOAT;
        std::vector<short> block(4096);
        std::vector<float> floats(4096);
        for (sf_count_t got = 1; got > 0;) {
            got = isFloat ? sf_read_float(file, floats.data(), 4096)
                          : sf_read_short(file, block.data(), 4096);
            for (std::size_t i = 0; i < static_cast<std::size_t>(got); ++i)
                words.push_back(isFloat ? static_cast<int>(std::lrint(floats[i] * 32768.0F))
                                        : block[i]);
        }
        EXPECT_EQ(info.samplerate, kRate) << format.name;
        EXPECT_EQ(info.channels, kChannels) << format.name;
        sf_close(file);
        return words;
    }
    static std::ptrdiff_t AnnotationSamples(const std::string& path, const Format& format) {
        if ((format.sndfile & SF_FORMAT_TYPEMASK) != SF_FORMAT_AU)
            return 0;
        const int headerSize = static_cast<unsigned char>(Load(path)[7]);  // never past 255 here
        const bool words = (format.sndfile & SF_FORMAT_SUBMASK) == SF_FORMAT_PCM_16;
        return (headerSize - 24) / (words ? 2 : 1);
    }
    static void ExpectClose(const std::vector<int>& theirs, const std::vector<int>& ours,
                            const Format& format, const std::string& who) {
        ASSERT_EQ(theirs.size(), ours.size()) << format.name << ", " << who;
        for (std::size_t i = 0; i < ours.size(); ++i)
            ASSERT_LE(std::abs(theirs[i] - ours[i] / 16), format.tolerance)
                << format.name << ", " << who << ", sample " << i;
    }

    std::vector<int> signal_;
};

TEST_F(Witnesses, OurFilesReadByThem) {
    for (const Format& format : Formats()) {
        if (!format.sink)
            continue;
        const std::string path = Path(std::string("ours.") + format.extension);
        std::filesystem::remove(path);
        WriteAll(format.sink(path.c_str()), signal_, 3333);
        std::vector<int> ours = ReadAll(format.source(path.c_str()));
        const auto lost = static_cast<std::size_t>(format.lostFrames * kChannels);
        ASSERT_EQ(ours.size(), signal_.size() - lost);
        for (std::size_t i = 0; i < ours.size(); ++i)
            ASSERT_NEAR(ours[i], signal_[i], kHalfStep) << format.name;
        ExpectClose(BySndfile(path, format), ours, format, "libsndfile");
        const bool raw = std::string(format.extension) == "raw";
        Run("sox -V1 -D -t " +
            (raw ? std::string(format.sox) + " -r 22050 -c 2" : format.extension) + " " + path +
            Pcm("sox.pcm"));
        ExpectClose(Words("sox.pcm"), ours, format, "sox");
        Run("ffmpeg -nostdin -v error -y " +
            (raw ? std::string(format.ffmpeg) + " -ar 22050 -ac 2" : std::string()) + " -i " +
            path + " -f s16le " + Path("ff.pcm"));
        std::vector<int> byFfmpeg = Words("ff.pcm");
        if (lost > 0)  // it goes on to the end of the FORM chunk
            byFfmpeg.resize(std::min(byFfmpeg.size(), ours.size()));
        ExpectClose(byFfmpeg, ours, format, "ffmpeg");
    }
}

TEST_F(Witnesses, TheirFilesReadByUs) {
    std::vector<short> words;
    for (const int sample : signal_)
        words.push_back(static_cast<short>(sample / 16));
    for (const Format& format : Formats()) {
        const std::string path = Path(std::string("theirs.") + format.extension);
        const auto check = [&](const char* who) {
            const LSoundSource source = format.source(path.c_str());
            EXPECT_EQ(source->Status(), 0) << format.name << ", " << who;
            EXPECT_EQ(source->SampleRate(), kRate) << format.name << ", " << who;
            std::vector<int> ours = ReadAll(source, 1111);
            EXPECT_EQ(ours.size(), signal_.size()) << format.name << ", " << who;
            std::vector<int> witness = BySndfile(path, format);
            // The annotation of an AU file is heard here, and as much is missing at the end.
            const std::ptrdiff_t annotation = AnnotationSamples(path, format);
            ours.erase(ours.begin(), ours.begin() + annotation);
            witness.resize(ours.size());
            ExpectClose(witness, ours, format, who);
            for (std::size_t i = 0; i < ours.size(); ++i)
                ASSERT_NEAR(ours[i], signal_[i], kHalfStep) << format.name << ", " << who;
        };
        SF_INFO info{0, kRate, kChannels, format.sndfile, 0, 0};
        SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
        ASSERT_NE(file, nullptr) << format.name;
        sf_command(file, SFC_SET_SCALE_INT_FLOAT_WRITE, nullptr, SF_TRUE);
        sf_write_short(file, words.data(), static_cast<sf_count_t>(words.size()));
        sf_close(file);
        check("libsndfile");
        Run("sox -V1 -D" + Pcm("pcm") + "-t " + format.sox + " " + path);
        check("sox");
        Run("ffmpeg -nostdin -v error -y -f s16le -ar 22050 -ac 2 -i " + Path("pcm") + " " +
            format.ffmpeg + " " + path);
        check("ffmpeg");
    }
}

TEST_F(Witnesses, G711EncodingAgainstLibsndfileOverTheWholeDomain) {
    std::vector<short> words;
    for (int value = -32768; value < 32768; ++value)
        words.push_back(static_cast<short>(value));
    const auto theirs = [&](int encoding) {
        const std::string path = Path("g711");
        SF_INFO info{0, 8000, 1, SF_FORMAT_RAW | encoding, 0, 0};
        SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
        sf_write_short(file, words.data(), 65536);
        sf_close(file);
        return Load(path);
    };
    const std::string muLaw = theirs(SF_FORMAT_ULAW);
    const std::string aLaw = theirs(SF_FORMAT_ALAW);
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

// The leak makes our stream drift slowly against the standard's; within the voice band the two
// agree.
TEST_F(Witnesses, VoxFilesAreUnderstoodBothWaysUpToTheLeak) {
    const LRawSettings settings{8000, 1, kRawDialogicAdpcm};
    std::vector<int> tone;
    Bytes words;
    for (int i = 0; i < 16000; ++i) {
        const double wave = std::sin(2 * std::numbers::pi * 700 * i / 8000);
        tone.push_back(static_cast<int>(std::lrint(8000 * wave)) * 16);
        words.LE16(static_cast<std::uint32_t>(tone.back() / 16));
    }
    Store("tone", words.Str());
    const std::string mono = " -t raw -e signed -b 16 -L -r 8000 -c 1 ";
    WriteAll(LRawFile::OpenSink(Path("ours.vox").c_str(), settings), tone);
    Run("sox -V1 -D -t vox -r 8000 " + Path("ours.vox") + mono + Path("back"));
    Run("sox -V1 -D" + mono + Path("tone") + " -t vox " + Path("theirs.vox"));
    const std::vector<int> back = Words("back");
    const std::vector<int> theirs =
        ReadAll(LRawFile::OpenSource(Path("theirs.vox").c_str(), settings));
    const std::vector<int> own = ReadAll(LRawFile::OpenSource(Path("ours.vox").c_str(), settings));
    ASSERT_EQ(back.size(), tone.size());
    ASSERT_EQ(theirs.size(), tone.size());
    const auto ratio = [&](const std::vector<int>& samples, double scale) {
        double power = 0;
        double error = 0;
        for (std::size_t i = 1000; i < tone.size(); ++i) {
            power += std::pow(tone[i], 2);
            error += std::pow(tone[i] - samples[i] * scale, 2);
        }
        return 10 * std::log10(power / error);
    };
    EXPECT_GT(ratio(own, 1), 24);
    EXPECT_GT(ratio(back, 16 / 2.0), 15);
    EXPECT_GT(ratio(theirs, 2), 15);
    // Held at one level, every code makes up for the leak: who does not know of it runs away.
    WriteAll(LRawFile::OpenSink(Path("level.vox").c_str(), settings),
             std::vector<int>(8000, 64000));
    Run("sox -V1 -D -t vox -r 8000 " + Path("level.vox") + mono + Path("level"));
    EXPECT_NEAR(ReadAll(LRawFile::OpenSource(Path("level.vox").c_str(), settings)).back(), 64000,
                2000);
    EXPECT_GT(Words("level").back() * 16, 2 * 2 * 64000);
}

TEST_F(Witnesses, AWaveFileGrowsUnderItsReaderWhileFfmpegWritesIt) {
    // On a pipe it cannot seek back, so its size fields stay unknown.
    const std::string path = Path("grow.wav");
    std::thread writer([&] {
        Run("(for i in 1 2 3 4 5; do cat " + Path("pcm") + "; sleep 0.05; done) |" +
            " ffmpeg -v error -f s16le -ar 22050 -ac 2 -i - -f wav - | cat > " + path);
    });
    LSoundSource source;
    for (int i = 0; i < 1000 && source->Status() != SoundStatus::kGood; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        source = LWaveFile::OpenSource(path.c_str());
    }
    std::vector<int> all;
    std::vector<int> block(400 * kChannels);
    const int total = 5 * 20000;
    int largest = 0;
    for (int tries = 0; tries < 2000 && source->GetPositionSample() < total; ++tries) {
        largest = std::max(largest, std::min(source->GetEndSample(), total));
        const int ready = std::min(400, largest - source->GetPositionSample());
        if (ready <= 0) {
            source->WaitForStreamingData(5);
            continue;
        }
        source->Read(block.data(), ready);
        all.insert(all.end(), block.begin(), block.begin() + ready * kChannels);
    }
    writer.join();
    EXPECT_TRUE(source->IsStreaming());
    ASSERT_EQ(all.size(), static_cast<std::size_t>(total) * kChannels);
    for (std::size_t i = 0; i < all.size(); ++i)
        ASSERT_EQ(all[i], signal_[i % signal_.size()]) << i;
}

}  // namespace
