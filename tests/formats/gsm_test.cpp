// The GSM 06.10 codec and its files. Witnesses: toast and ffmpeg, each with a codec of its own.
#include <cmath>
#include <random>

#include "formats/gsm_decoder.h"
#include "formats/gsm_encoder.h"
#include "formats/gsm_file.h"
#include "formats/raw_file.h"
#include "tests/formats/format_files.h"

namespace {

class GsmTest : public FormatTest {
protected:
    // Runs a shell command in the folder and gives the 16-bit samples that it left in "out.raw", at
    // pipeline scale.
    std::vector<int> Witness(const std::string& command) const {
        EXPECT_EQ(std::system(("cd " + Path("") + " && " + command).c_str()), 0) << command;
        return ReadAll(LRawFile::OpenSource(Path("out.raw").c_str(), {kGsmRate, 1, kRawPcm16}));
    }
};

// A voiced sound: harmonics of a gliding pitch, with pauses and a little noise. 16-bit range.
std::vector<int> VoiceLike(int count) {
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

std::string EncodeAll(const std::vector<int>& samples,
                      const LGSMKernels& kernels = GsmFastKernels()) {
    LGSMEncoder encoder(kernels);
    std::string coded;
    for (std::size_t at = 0; at + gsm::kFrameSamples <= samples.size(); at += gsm::kFrameSamples) {
        unsigned char frame[kGsmNormalBytes];
        encoder.EncodeNormal(&samples[at], frame);
        coded.append(frame, frame + kGsmNormalBytes);
    }
    return coded;
}

std::vector<int> DecodeAll(const std::string& coded,
                           const LGSMKernels& kernels = GsmFastKernels()) {
    LGSMDecoder decoder(kernels);
    std::vector<int> samples(coded.size() / kGsmNormalBytes * gsm::kFrameSamples);
    const auto* bytes = reinterpret_cast<const unsigned char*>(coded.data());
    for (std::size_t i = 0; i < coded.size() / kGsmNormalBytes; i++)
        decoder.DecodeFrameNormal(&bytes[i * kGsmNormalBytes], &samples[i * gsm::kFrameSamples]);
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
    std::uint64_t sum = 14695981039346656037U;
    const auto add = [&sum](const std::vector<int>& samples) {
        for (const int value : samples)
            sum = (sum ^ static_cast<std::uint32_t>(value)) * 1099511628211U;
    };
    std::vector<std::vector<int>> signals = HardSignals();
    signals.push_back(VoiceLike(gsm::kFrameSamples * 200));
    for (std::size_t i = 0; i < signals.size(); i++) {
        const std::string coded = EncodeAll(signals[i], GsmPlainKernels());
        EXPECT_TRUE(coded == EncodeAll(signals[i])) << "signal " << i;
        EXPECT_TRUE(DecodeAll(coded, GsmPlainKernels()) == DecodeAll(coded)) << "signal " << i;
        if (i + 1 < signals.size())  // the voice is not the same to the bit on every machine
            add(DecodeAll(coded));
    }
    // Frames that no encoder makes: full-scale residuals through unstable-looking filters.
    std::mt19937 random(5);
    std::string noise(kGsmNormalBytes * 2000, '\0');
    std::generate(noise.begin(), noise.end(), [&random] { return static_cast<char>(random()); });
    EXPECT_TRUE(DecodeAll(noise, GsmPlainKernels()) == DecodeAll(noise));
    // Of what was made when other codecs heard the same: the small errors that they allow show.
    add(DecodeAll(noise));
    EXPECT_EQ(sum, 11015248553337717449U);
}

TEST_F(GsmTest, OtherDecodersHearWhatOursHearsAndOtherEncodersCodeNoBetter) {
    const std::vector<int> voice = VoiceLike(kGsmRate * 4);
    const std::string coded = EncodeAll(voice);
    Store("ours.gsm", coded);
    const std::vector<int> ours = DecodeAll(coded);
    const std::vector<int> heard = Witness("toast -d -l -c ours.gsm > out.raw");
    ASSERT_EQ(heard.size(), ours.size());
    EXPECT_GT(SignalToNoise(ours, heard), 40);  // de-emphasis differs by 0.07 %
    WriteAll(LRawFile::OpenSink(Path("in.raw").c_str(), {kGsmRate, 1, kRawPcm16}), voice);
    const std::vector<int> theirs =
        Witness("toast -l -c in.raw > theirs.gsm && toast -d -l -c theirs.gsm > out.raw");
    EXPECT_GT(SignalToNoise(voice, ours), SignalToNoise(voice, theirs) - 0.5);
    EXPECT_GT(SignalToNoise(theirs, DecodeAll(Load(Path("theirs.gsm")))), 40);
    // The wave packing, in a file of format tag 49.
    LGSMEncoder encoder;
    std::vector<unsigned char> wave(voice.size() / 320 * kGsmWaveBytes);
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

TEST_F(GsmTest, FilesHoldWholeFramesHoweverTheyAreWritten) {
    std::vector<int> voice = VoiceLike(8192 * 2);
    for (const std::size_t frames : {16384U, 161U, 160U, 1U, 0U}) {
        voice.resize(frames);
        std::vector<int> padded = voice;
        padded.resize((frames + 159) / 160 * 160);
        for (const int block : {8192, 1, 2, 3, 161, 1000}) {
            Store("out.gsm", "a much longer text than some of the outputs that replace it");
            LSoundSink sink = LGSMFile::OpenSink(Path("out.gsm").c_str());
            WriteAll(sink, voice, block);
            EXPECT_EQ(sink->FramesWritten(), static_cast<int>(frames));
            EXPECT_EQ(sink->Finish(), 0);
            sink.Close();
            EXPECT_EQ(Load(Path("out.gsm")), EncodeAll(padded)) << frames << " by " << block;
        }
    }
}

// A seek starts the decoder cold at the frame that holds the place.
TEST_F(GsmTest, ReadsTheSameFromAnyPlaceInAnyBlocksAndFallsSilentAtTheEnd) {
    const std::string coded = EncodeAll(VoiceLike(160 * 20));
    const std::vector<int> whole = DecodeAll(coded);
    const std::string path = Store("in.gsm", coded + "a partial frame");  // does not count
    LSoundSource source = LGSMFile::OpenSource(path.c_str());
    EXPECT_EQ(source->GetEndSample(), 3200);
    EXPECT_EQ(source->PeakMagnitude(), 1048544);
    for (const int frame : {0, -5, 1, 159, 160, 161, 1500, 3199, 3200, 3201, 999999}) {
        const auto first = static_cast<std::size_t>(std::clamp(frame, 0, 3200) / 160);
        std::vector<int> wanted = DecodeAll(coded.substr(first * kGsmNormalBytes));
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
    source = LGSMFile::OpenSource(path.c_str());
    std::filesystem::resize_file(path, 100);
    std::vector<int> left(whole.begin(), whole.begin() + 480);
    left.resize(3200);
    EXPECT_EQ(Next(source, 3200), left);
    EXPECT_EQ(LGSMFile::OpenSource(path.c_str())->GetEndSample(), 480);
}

}  // namespace
