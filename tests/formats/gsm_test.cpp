// The GSM 06.10 codec and its files. Witnesses: toast, sox and ffmpeg, each with a codec of its
// own.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "formats/gsm_decoder.h"
#include "formats/gsm_encoder.h"
#include "formats/gsm_file.h"

namespace {

using Bytes = std::vector<unsigned char>;

class GsmTest : public testing::Test {
protected:
    GsmTest() {
        char pattern[] = "/tmp/lectora-gsm-XXXXXX";
        folder_ = ::mkdtemp(pattern);
    }
    ~GsmTest() override { std::filesystem::remove_all(folder_); }

    std::string Path(const char* name) const { return folder_ + "/" + name; }
    std::string Save(const char* name, const void* data, std::size_t size) const {
        std::ofstream(Path(name), std::ios::binary)
            .write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
        return Path(name);
    }
    Bytes Load(const char* name) const {
        std::ifstream in(Path(name), std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(in), {});
    }
    // Runs a shell command in the folder and gives the 16-bit samples that it left in "out.raw", at
    // pipeline scale.
    std::vector<int> Witness(const std::string& command) const {
        EXPECT_EQ(std::system(("cd " + folder_ + " && " + command).c_str()), 0) << command;
        const Bytes bytes = Load("out.raw");
        std::vector<int> samples;
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
            samples.push_back(static_cast<std::int16_t>(bytes[i] | bytes[i + 1] << 8) * 16);
        return samples;
    }

private:
    std::string folder_;
};

// A voiced sound: pulses at a gliding pitch through three resonances, with pauses and a little
// noise. 16-bit range.
std::vector<int> Voice(int count) {
    std::mt19937 random(7);
    const double resonance[3][2] = {{600, 0.97}, {1400, 0.95}, {2600, 0.93}};
    double memory[3][2] = {};
    double phase = 0;
    std::vector<int> samples;
    for (int i = 0; i < count; i++) {
        phase += (110 + 40 * std::sin(i / 3000.0)) / kGsmRate;
        double value = (static_cast<int>(random() % 201) - 100) / 100.0 * 20;
        if (phase >= 1) {
            phase -= 1;
            value += i % 8000 < 6000 ? 500 : 0;
        }
        for (int k = 0; k < 3; k++) {
            const double radius = resonance[k][1];
            const double turn = 2 * std::acos(-1.0) * resonance[k][0] / kGsmRate;
            value += 2 * radius * std::cos(turn) * memory[k][0] - radius * radius * memory[k][1];
            memory[k][1] = memory[k][0];
            memory[k][0] = value;
            value *= 0.6;
        }
        samples.push_back(std::clamp(static_cast<int>(value * 12), -32768, 32767) * 16);
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

Bytes EncodeAll(const std::vector<int>& samples, const LGSMKernels& kernels = GsmFastKernels()) {
    LGSMEncoder encoder(kernels);
    Bytes coded(samples.size() / gsm::kFrameSamples * kGsmNormalBytes);
    for (std::size_t i = 0; i < coded.size() / kGsmNormalBytes; i++)
        encoder.EncodeNormal(&samples[i * gsm::kFrameSamples], &coded[i * kGsmNormalBytes]);
    return coded;
}

std::vector<int> DecodeAll(const Bytes& coded, const LGSMKernels& kernels = GsmFastKernels()) {
    LGSMDecoder decoder(kernels);
    std::vector<int> samples(coded.size() / kGsmNormalBytes * gsm::kFrameSamples);
    for (std::size_t i = 0; i < coded.size() / kGsmNormalBytes; i++)
        decoder.DecodeFrameNormal(&coded[i * kGsmNormalBytes], &samples[i * gsm::kFrameSamples]);
    return samples;
}

LGSMFrame RandomFrame(std::mt19937& random) {
    const unsigned ratioBits[] = {6, 6, 5, 5, 4, 4, 3, 3};
    const auto bits = [&random](unsigned count) {
        return static_cast<std::int16_t>(random() >> (32 - count));
    };
    LGSMFrame frame;
    for (int i = 0; i < gsm::kOrder; i++)
        frame.codedRatios[i] = bits(ratioBits[i]);
    for (LGSMSubFrame& sub : frame.subFrames) {
        sub.lag = bits(7);
        sub.gain = bits(2);
        sub.grid = bits(2);
        sub.blockAmplitude = bits(6);
        for (std::int16_t& pulse : sub.pulses)
            pulse = bits(3);
    }
    return frame;
}

std::vector<int> Fields(const LGSMFrame& frame) {
    std::vector<int> fields(std::begin(frame.codedRatios), std::end(frame.codedRatios));
    for (const LGSMSubFrame& sub : frame.subFrames) {
        fields.insert(fields.end(), {sub.lag, sub.gain, sub.grid, sub.blockAmplitude});
        fields.insert(fields.end(), std::begin(sub.pulses), std::end(sub.pulses));
    }
    return fields;
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
        const Bytes coded = EncodeAll(signals[i], GsmPlainKernels());
        EXPECT_TRUE(coded == EncodeAll(signals[i])) << "signal " << i;
        EXPECT_TRUE(DecodeAll(coded, GsmPlainKernels()) == DecodeAll(coded)) << "signal " << i;
    }
    // Frames that no encoder makes: full-scale residuals through unstable-looking filters.
    std::mt19937 random(5);
    Bytes noise(kGsmNormalBytes * 2000);
    std::generate(noise.begin(), noise.end(),
                  [&random] { return static_cast<unsigned char>(random()); });
    EXPECT_TRUE(DecodeAll(noise, GsmPlainKernels()) == DecodeAll(noise));
}

TEST_F(GsmTest, PackingsPlaceEveryBitAndReadBack) {
    const int widths[] = {7, 2, 2, 6, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3};
    std::vector<int> allWidths = {6, 6, 5, 5, 4, 4, 3, 3};
    for (int i = 0; i < 4; i++)
        allWidths.insert(allWidths.end(), std::begin(widths), std::end(widths));
    std::mt19937 random(11);
    for (int round = 0; round < 50; round++) {
        const LGSMFrame first = RandomFrame(random);
        const LGSMFrame second = RandomFrame(random);
        Bytes normal(33, 0xFF);
        Bytes wave(65, 0xFF);
        first.EncodeNormal(normal.data());
        first.EncodeWave1(wave.data());
        second.EncodeWave2(wave.data());

        Bytes wantedNormal(33, 0);
        Bytes wantedWave(65, 0);
        wantedNormal[0] = 0xD0;
        std::size_t at = 0;
        for (std::size_t field = 0; field < allWidths.size(); field++) {
            for (int bit = 0; bit < allWidths[field]; bit++, at++) {
                if ((Fields(first)[field] >> (allWidths[field] - 1 - bit)) & 1)
                    wantedNormal[(at + 4) / 8] |=
                        static_cast<unsigned char>(0x80 >> ((at + 4) % 8));
                if ((Fields(first)[field] >> bit) & 1)
                    wantedWave[at / 8] |= static_cast<unsigned char>(1 << (at % 8));
                if ((Fields(second)[field] >> bit) & 1)
                    wantedWave[(at + 260) / 8] |= static_cast<unsigned char>(1 << ((at + 260) % 8));
            }
        }
        EXPECT_EQ(at, 260u);
        EXPECT_EQ(normal, wantedNormal);
        EXPECT_EQ(wave, wantedWave);

        LGSMFrame back;
        back.DecodeNormal(normal.data());
        EXPECT_EQ(Fields(back), Fields(first));
        back.DecodeWave1(wave.data());
        EXPECT_EQ(Fields(back), Fields(first));
        back.DecodeWave2(wave.data());
        EXPECT_EQ(Fields(back), Fields(second));
    }
}

TEST_F(GsmTest, OtherDecodersHearWhatOursHears) {
    const std::vector<int> voice = Voice(kGsmRate * 4);
    const Bytes coded = EncodeAll(voice);
    Save("voice.gsm", coded.data(), coded.size());
    const std::vector<int> ours = DecodeAll(coded);
    for (const char* command :
         {"toast -d -l -c voice.gsm > out.raw", "sox voice.gsm -b 16 -e signed -L out.raw",
          "ffmpeg -v error -y -f gsm -i voice.gsm -f s16le out.raw"}) {
        const std::vector<int> theirs = Witness(command);
        ASSERT_EQ(theirs.size(), ours.size()) << command;
        EXPECT_GT(SignalToNoise(ours, theirs), 40) << command;  // de-emphasis differs by 0.07 %
    }
    // The wave packing, in a file of format tag 49.
    LGSMEncoder encoder;
    const unsigned char format[] = {20,   0, 0, 0, 49, 0, 1, 0, 0x40, 0x1F, 0,    0,
                                    0x59, 6, 0, 0, 65, 0, 0, 0, 2,    0,    0x40, 1};
    const std::string start =
        "RIFF....WAVEfmt " + std::string(std::begin(format), std::end(format)) + "data....";
    Bytes wave(start.begin(), start.end());
    const std::size_t header = wave.size();
    wave.resize(header + voice.size() / 320 * kGsmWaveBytes);
    for (std::size_t i = 0; i < voice.size() / 320; i++)
        encoder.EncodeWave(&voice[i * 320], &wave[header + i * kGsmWaveBytes]);
    const std::size_t data = wave.size() - header;
    for (unsigned i = 0; i < 4; i++) {
        wave[4 + i] = static_cast<unsigned char>((wave.size() - 8) >> (8 * i));
        wave[header - 4 + i] = static_cast<unsigned char>(data >> (8 * i));
    }
    Save("voice.wav", wave.data(), wave.size());
    EXPECT_GT(SignalToNoise(ours, Witness("ffmpeg -v error -y -i voice.wav -f s16le out.raw")), 40);
    LGSMDecoder decoder;
    std::vector<int> back(voice.size());
    for (std::size_t i = 0; i < voice.size() / 320; i++)
        decoder.DecodeFrameWave(&wave[header + i * kGsmWaveBytes], &back[i * 320]);
    EXPECT_EQ(back, ours);
}

TEST_F(GsmTest, CodesAsWellAsAnotherEncoder) {
    const std::vector<int> voice = Voice(kGsmRate * 4);
    std::vector<std::int16_t> words(voice.size());
    std::transform(voice.begin(), voice.end(), words.begin(),
                   [](int sample) { return static_cast<std::int16_t>(sample / 16); });
    Save("in.raw", words.data(), words.size() * 2);
    const std::vector<int> theirs =
        Witness("toast -l -c in.raw > voice.gsm && toast -d -l -c voice.gsm > out.raw");
    const double ourRatio = SignalToNoise(voice, DecodeAll(EncodeAll(voice)));
    EXPECT_GT(ourRatio, SignalToNoise(voice, theirs) - 0.5);
    EXPECT_GT(SignalToNoise(theirs, DecodeAll(Load("voice.gsm"))), 40);
    // Once settled, silence is but the ripple of the smallest pulses.
    const std::vector<int> silence = DecodeAll(EncodeAll(std::vector<int>(kGsmRate)));
    EXPECT_THAT(std::vector<int>(silence.end() - 800, silence.end()),
                testing::Each(testing::AllOf(testing::Gt(-24 * 16), testing::Lt(24 * 16))));
}

TEST_F(GsmTest, FilesHoldWholeFramesHoweverTheyAreWritten) {
    const std::vector<int> voice = Voice(8192 * 2);
    const struct {
        int frames;
        std::size_t bytes;
    } kSizes[] = {{0, 0}, {1, 33}, {160, 33}, {161, 66}, {16384, 103 * 33}};
    for (const auto& size : kSizes) {
        Bytes wanted;
        for (const int block : {8192, 1, 2, 3, 161, 1000}) {
            Save("out.gsm", "a much longer text than some of the outputs that replace it", 58);
            LSoundSink sink = LGSMFile::OpenSink(Path("out.gsm").c_str());
            for (int at = 0; at < size.frames; at += block)
                sink->Write(&voice[static_cast<std::size_t>(at)],
                            std::min(block, size.frames - at));
            EXPECT_EQ(sink->FramesWritten(), size.frames);
            EXPECT_EQ(sink->WriteError(), 0);
            sink.Close();
            const Bytes coded = Load("out.gsm");
            ASSERT_EQ(coded.size(), size.bytes) << size.frames << " in blocks of " << block;
            for (std::size_t i = 0; i < coded.size(); i += kGsmNormalBytes)
                ASSERT_EQ(coded[i] >> 4, 0xD);
            if (block == 8192)
                wanted = coded;
            EXPECT_EQ(coded, wanted) << size.frames << " in blocks of " << block;
        }
    }
}

TEST_F(GsmTest, ReadsTheSameInAnyBlocksAndFallsSilentAtTheEnd) {
    Bytes coded = EncodeAll(Voice(160 * 60));
    const std::vector<int> wanted = DecodeAll(coded);
    coded.resize(coded.size() + 17, 0xD5);  // a partial frame does not count
    Save("in.gsm", coded.data(), coded.size());
    for (const int block : {1, 2, 3, 159, 161, 8192}) {
        LSoundSource source = LGSMFile::OpenSource(Path("in.gsm").c_str());
        ASSERT_EQ(source->GetEndSample(), 160 * 60);
        EXPECT_EQ(source->PeakMagnitude(), 1048544);
        std::vector<int> got(wanted.size() + 500, 99);
        for (std::size_t at = 0; at < got.size(); at += static_cast<std::size_t>(block))
            source->Read(&got[at], static_cast<int>(
                                       std::min(got.size() - at, static_cast<std::size_t>(block))));
        EXPECT_EQ(source->GetPositionSample(), 160 * 60 + 500);
        EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), got.begin())) << "blocks of " << block;
        EXPECT_EQ(std::count(got.end() - 500, got.end(), 0), 500);
    }
    // A file cut while it is read gives silence for what is gone.
    LSoundSource source = LGSMFile::OpenSource(Path("in.gsm").c_str());
    std::filesystem::resize_file(Path("in.gsm"), 100);
    std::vector<int> got(9600, 99);
    source->Read(got.data(), 8192);
    EXPECT_TRUE(std::equal(got.begin(), got.begin() + 480, wanted.begin()));
    EXPECT_EQ(std::count(got.begin() + 480, got.begin() + 8192, 0), 8192 - 480);
    EXPECT_EQ(LGSMFile::OpenSource(Path("in.gsm").c_str())->GetEndSample(), 480);
}

TEST_F(GsmTest, SeekDecodesFromAColdStartAtTheFrame) {
    const Bytes coded = EncodeAll(Voice(160 * 10));
    Save("in.gsm", coded.data(), coded.size());
    LSoundSource source = LGSMFile::OpenSource(Path("in.gsm").c_str());
    const std::vector<int> whole = DecodeAll(coded);
    for (const int frame : {0, -5, 1, 159, 160, 161, 1500, 1599, 1600, 1601, 999999}) {
        source->Seek(frame);
        EXPECT_EQ(source->GetPositionSample(), frame);
        const auto first = static_cast<std::size_t>(std::clamp(frame, 0, 1600) / 160);
        std::vector<int> wanted = DecodeAll(Bytes(
            coded.begin() + static_cast<std::ptrdiff_t>(first * kGsmNormalBytes), coded.end()));
        if (frame > 0 && frame < 1600)
            wanted.erase(wanted.begin(), wanted.begin() + frame % 160);
        wanted.resize(1700);
        std::vector<int> got(1700, 99);
        source->Read(got.data(), 1700);
        EXPECT_EQ(got, wanted) << "seek to " << frame;
    }
}

TEST_F(GsmTest, WhatCannotBeOpenedOrWrittenIsNoticed) {
    ASSERT_EQ(::mkfifo(Path("fifo").c_str(), 0600), 0);
    for (const std::string& path :
         {Path("missing"), Path("fifo"), Path("."), std::string("/dev/zero")})
        EXPECT_EQ(LGSMFile::OpenSource(path.c_str())->Status(), 4) << path;
    EXPECT_EQ(LGSMFile::OpenSink(Path("no/folder.gsm").c_str())->Status() & 1, 1);
    LSoundSink full = LGSMFile::OpenSink("/dev/full");
    EXPECT_EQ(full->Status(), 0);
    full->Write(std::vector<int>(160).data(), 160);
    EXPECT_EQ(full->Finish(), ENOSPC);
}

}  // namespace
