// The GSM 06.10 codec and its files. Witnesses: toast and ffmpeg, each with a codec of its own.
#include <cmath>
#include <random>

#include "formats/file_io.h"
#include "formats/gsm_decoder.h"
#include "formats/gsm_encoder.h"
#include "formats/gsm_file.h"
#include "tests/formats/format_files.h"

namespace {

using Coded = std::vector<unsigned char>;

class GsmTest : public FormatTest {
protected:
    void Save(const char* name, const Coded& bytes) const {
        Store(name, std::string(bytes.begin(), bytes.end()));
    }
    Coded LoadCoded(const char* name) const {
        const std::string bytes = Load(Path(name));
        return {bytes.begin(), bytes.end()};
    }
    // Runs a shell command in the folder and gives the 16-bit samples that it left in "out.raw", at
    // pipeline scale.
    std::vector<int> Witness(const std::string& command) const {
        EXPECT_EQ(std::system(("cd " + Path("") + " && " + command).c_str()), 0) << command;
        const std::string bytes = Load(Path("out.raw"));
        std::vector<int> samples;
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
            samples.push_back(LoadLE16(reinterpret_cast<const std::uint8_t*>(&bytes[i])));
        for (int& sample : samples)
            sample = static_cast<std::int16_t>(sample) * 16;
        return samples;
    }
};

// A voiced sound: harmonics of a gliding pitch, with pauses and a little noise. 16-bit range.
std::vector<int> Voice(int count) {
    std::mt19937 random(7);
    double phase = 0;
    std::vector<int> samples;
    for (int i = 0; i < count; i++) {
        phase += 2 * std::acos(-1.0) * (110 + 40 * std::sin(i / 3000.0)) / kGsmRate;
        double value = static_cast<int>(random() % 201) - 100;
        for (int k = 1; k < 20 && i % 8000 < 6000; k++)
            value += 6000 * std::sin(k * phase + k * k) / k;
        samples.push_back(std::clamp(static_cast<int>(value), -32768, 32767) * 16);
    }
    return samples;
}

double SignalToNoise(const std::vector<int>& signal, const std::vector<int>& other) {
    double power = 0;
    double noise = 1e-9;
    for (std::size_t i = 0; i < std::min(signal.size(), other.size()); i++) {
        power += std::pow(signal[i], 2.0);
        noise += std::pow(signal[i] - other[i], 2.0);
    }
    return 10 * std::log10(power / noise);
}

Coded EncodeAll(const std::vector<int>& samples, const LGSMKernels& kernels = GsmFastKernels()) {
    LGSMEncoder encoder(kernels);
    Coded coded(samples.size() / gsm::kFrameSamples * kGsmNormalBytes);
    for (std::size_t i = 0; i < coded.size() / kGsmNormalBytes; i++)
        encoder.EncodeNormal(&samples[i * gsm::kFrameSamples], &coded[i * kGsmNormalBytes]);
    return coded;
}

std::vector<int> DecodeAll(const Coded& coded, const LGSMKernels& kernels = GsmFastKernels()) {
    LGSMDecoder decoder(kernels);
    std::vector<int> samples(coded.size() / kGsmNormalBytes * gsm::kFrameSamples);
    for (std::size_t i = 0; i < coded.size() / kGsmNormalBytes; i++)
        decoder.DecodeFrameNormal(&coded[i * kGsmNormalBytes], &samples[i * gsm::kFrameSamples]);
    return samples;
}

// Sample values that drive every saturation: noise, full scale, square waves at the worst periods,
// huge integers.
std::vector<std::vector<int>> HardSignals() {
    std::mt19937 random(3);
    std::vector<std::vector<int>> signals(6, std::vector<int>(gsm::kFrameSamples * 50));
    for (std::size_t i = 0; i < signals[0].size(); i++) {
        signals[0][i] = static_cast<int>(random() >> 12) - 524288;
        signals[1][i] = i % 2 == 0 ? 524272 : -524288;
        signals[2][i] = i / 40 % 2 == 0 ? 524272 : -524288;
        signals[3][i] = random() % 100 == 0 ? 524272 : 0;
        signals[4][i] = static_cast<int>(random());
        signals[5][i] = 524272;
    }
    return signals;
}

TEST_F(GsmTest, VectorKernelsGiveTheWordsOfThePlainOnes) {
    std::vector<std::vector<int>> signals = HardSignals();
    signals.push_back(Voice(gsm::kFrameSamples * 200));
    for (std::size_t i = 0; i < signals.size(); i++) {
        const Coded coded = EncodeAll(signals[i], GsmPlainKernels());
        EXPECT_TRUE(coded == EncodeAll(signals[i])) << "signal " << i;
        EXPECT_TRUE(DecodeAll(coded, GsmPlainKernels()) == DecodeAll(coded)) << "signal " << i;
    }
    // Frames that no encoder makes: full-scale residuals through unstable-looking filters.
    std::mt19937 random(5);
    Coded noise(kGsmNormalBytes * 2000);
    std::generate(noise.begin(), noise.end(),
                  [&random] { return static_cast<unsigned char>(random()); });
    EXPECT_TRUE(DecodeAll(noise, GsmPlainKernels()) == DecodeAll(noise));
}

TEST_F(GsmTest, OtherDecodersHearWhatOursHears) {
    const std::vector<int> voice = Voice(kGsmRate * 4);
    const Coded coded = EncodeAll(voice);
    Save("voice.gsm", coded);
    const std::vector<int> ours = DecodeAll(coded);
    const std::vector<int> theirs = Witness("toast -d -l -c voice.gsm > out.raw");
    ASSERT_EQ(theirs.size(), ours.size());
    EXPECT_GT(SignalToNoise(ours, theirs), 40);  // de-emphasis differs by 0.07 %
    // The wave packing, in a file of format tag 49.
    LGSMEncoder encoder;
    Coded wave(voice.size() / 320 * kGsmWaveBytes);
    for (std::size_t i = 0; i < voice.size() / 320; i++)
        encoder.EncodeWave(&voice[i * 320], &wave[i * kGsmWaveBytes]);
    const auto size = static_cast<std::uint32_t>(wave.size());
    Bytes file;
    file.Text("RIFF").LE32(size + 40).Text("WAVEfmt ").LE32(20).LE16(49).LE16(1).LE32(8000);
    file.LE32(1625).LE16(65).LE16(0).LE16(2).LE16(320).Text("data").LE32(size);
    Store("voice.wav", file.Str() + std::string(wave.begin(), wave.end()));
    EXPECT_GT(SignalToNoise(ours, Witness("ffmpeg -v error -y -i voice.wav -f s16le out.raw")), 40);
    LGSMDecoder decoder;
    std::vector<int> back(voice.size());
    for (std::size_t i = 0; i < voice.size() / 320; i++)
        decoder.DecodeFrameWave(&wave[i * kGsmWaveBytes], &back[i * 320]);
    EXPECT_EQ(back, ours);
}

TEST_F(GsmTest, CodesAsWellAsAnotherEncoder) {
    const std::vector<int> voice = Voice(kGsmRate * 4);
    Bytes words;
    for (const int sample : voice)
        words.LE16(static_cast<std::uint32_t>(sample / 16));
    Store("in.raw", words.Str());
    const std::vector<int> theirs =
        Witness("toast -l -c in.raw > voice.gsm && toast -d -l -c voice.gsm > out.raw");
    const double ourRatio = SignalToNoise(voice, DecodeAll(EncodeAll(voice)));
    EXPECT_GT(ourRatio, SignalToNoise(voice, theirs) - 0.5);
    EXPECT_GT(SignalToNoise(theirs, DecodeAll(LoadCoded("voice.gsm"))), 40);
}

TEST_F(GsmTest, FilesHoldWholeFramesHoweverTheyAreWritten) {
    const std::vector<int> voice = Voice(8192 * 2);
    const std::pair<int, std::size_t> sizes[] = {
        {0, 0}, {1, 33}, {160, 33}, {161, 66}, {16384, 103 * 33}};
    for (const auto& [frames, bytes] : sizes) {
        Coded wanted;
        for (const int block : {8192, 1, 2, 3, 161, 1000}) {
            Store("out.gsm", "a much longer text than some of the outputs that replace it");
            LSoundSink sink = LGSMFile::OpenSink(Path("out.gsm").c_str());
            for (int at = 0; at < frames; at += block)
                sink->Write(&voice[static_cast<std::size_t>(at)], std::min(block, frames - at));
            EXPECT_EQ(sink->FramesWritten(), frames);
            EXPECT_EQ(sink->WriteError(), 0);
            sink.Close();
            const Coded coded = LoadCoded("out.gsm");
            ASSERT_EQ(coded.size(), bytes) << frames << " in blocks of " << block;
            if (block == 8192)
                wanted = coded;
            EXPECT_EQ(coded, wanted) << frames << " in blocks of " << block;
        }
    }
}

// A seek starts the decoder cold at the frame that holds the place.
TEST_F(GsmTest, ReadsTheSameFromAnyPlaceInAnyBlocksAndFallsSilentAtTheEnd) {
    Coded coded = EncodeAll(Voice(160 * 20));
    const std::vector<int> whole = DecodeAll(coded);
    coded.resize(coded.size() + 17, 0xD5);  // a partial frame does not count
    Save("in.gsm", coded);
    LSoundSource source = LGSMFile::OpenSource(Path("in.gsm").c_str());
    EXPECT_EQ(source->GetEndSample(), 3200);
    EXPECT_EQ(source->PeakMagnitude(), 1048544);
    for (const int frame : {0, -5, 1, 159, 160, 161, 1500, 3199, 3200, 3201, 999999}) {
        const auto first = static_cast<std::ptrdiff_t>(std::clamp(frame, 0, 3200) / 160);
        std::vector<int> wanted = DecodeAll(Coded(
            coded.begin() + first * static_cast<std::ptrdiff_t>(kGsmNormalBytes), coded.end()));
        if (frame > 0 && frame < 3200)
            wanted.erase(wanted.begin(), wanted.begin() + frame % 160);
        wanted.resize(4000);
        for (const int block : {1, 2, 3, 159, 161, 8192}) {
            source->Seek(frame);
            EXPECT_EQ(source->GetPositionSample(), frame);
            std::vector<int> got(4000, 99);
            for (int at = 0; at < 4000; at += block)
                source->Read(&got[static_cast<std::size_t>(at)], std::min(4000 - at, block));
            EXPECT_EQ(source->GetPositionSample(), frame + 4000);
            EXPECT_EQ(got, wanted) << "from " << frame << " in blocks of " << block;
        }
    }
    // A file cut while it is read gives silence for what is gone.
    source = LGSMFile::OpenSource(Path("in.gsm").c_str());
    std::filesystem::resize_file(Path("in.gsm"), 100);
    std::vector<int> got(3200, 99);
    source->Read(got.data(), 3200);
    EXPECT_TRUE(std::equal(got.begin(), got.begin() + 480, whole.begin()));
    EXPECT_EQ(std::count(got.begin() + 480, got.end(), 0), 3200 - 480);
    EXPECT_EQ(LGSMFile::OpenSource(Path("in.gsm").c_str())->GetEndSample(), 480);
}

}  // namespace
