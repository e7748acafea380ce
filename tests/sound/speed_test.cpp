#include "sound/speed.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "sound/convert.h"
#include "tests/sound/sound_witness.h"
#include "tests/support/memory_sound.h"

namespace {

constexpr int kRate = 22050;
constexpr double kAmplitude = 400000;

LSoundSource OpenSpeed(std::vector<int> samples, double start, double end, int ramp = 0,
                       unsigned char channels = 1) {
    return LSPSpeed(start, end, LSoundTime(ramp))
        .OpenSource(LSoundSource(new MemorySource(std::move(samples), kRate, channels)));
}

// What a player hears: blocks until the position reaches the end.
std::vector<int> Play(LSoundSource& source, int chunk = 2000, int mostFrames = 100 * kRate) {
    std::vector<int> heard;
    while (static_cast<int>(heard.size()) < mostFrames * source->Channels()) {
        const int remaining = source->GetEndSample() - source->GetPositionSample();
        if (remaining < 1)
            break;
        const std::vector<int> block = ReadFrames(source, std::min(chunk, remaining));
        heard.insert(heard.end(), block.begin(), block.end());
    }
    return heard;
}

int LargestStep(const std::vector<int>& samples, int channels = 1) {
    int largest = 0;
    for (std::size_t i = static_cast<std::size_t>(channels); i < samples.size(); ++i)
        largest = std::max(largest,
                           std::abs(samples[i] - samples[i - static_cast<std::size_t>(channels)]));
    return largest;
}

TEST(SpeedTest, UnitFactorsGiveTheSourceAndItsReverse) {
    for (const unsigned char channels : {std::uint8_t{1}, std::uint8_t{2}}) {
        std::vector<int> samples = RandomSamples(std::size_t{60000} * channels, 524272, 4);
        LSoundSource forwards = OpenSpeed(samples, 1, 1, 0, channels);
        EXPECT_EQ(Play(forwards, 777), samples);

        LSoundSource backwards = OpenSpeed(samples, -1, -1, 0, channels);
        backwards->Seek(60000);
        std::vector<int> heard = Play(backwards, 777);
        ASSERT_GE(heard.size(), samples.size());
        heard.resize(samples.size());
        for (std::size_t frame = 0; frame < 60000; ++frame)
            for (std::size_t channel = 0; channel < channels; ++channel)
                ASSERT_EQ(heard[frame * channels + channel],
                          samples[(59999 - frame) * channels + channel])
                    << frame;
    }
}

TEST(SpeedTest, ToneKeepsItsPitchAndTakesItsTime) {
    const std::vector<int> tone = Tone(440, kRate, 10 * kRate, kAmplitude);
    for (const double factor : {0.1, 0.5, 1.5, 3.0, 7.0, -0.5, -3.0, -7.0}) {
        LSoundSource source = OpenSpeed(tone, factor, factor);
        if (factor < 0)
            source->Seek(10 * kRate);
        const std::vector<int> heard = Play(source, 500);
        EXPECT_NEAR(static_cast<double>(heard.size()), 10 * kRate / std::abs(factor), 800)
            << factor;
        const std::vector<int> middle(heard.begin() + 300, heard.end() - 1200);
        // Places are whole frames, which may put the pitch a thousandth off.
        double strongest = 0;
        for (const double hertz : {439.5, 439.75, 440.0, 440.25, 440.5})
            strongest = std::max(strongest, AmplitudeAt(middle, hertz / kRate));
        EXPECT_GT(strongest, 0.93 * kAmplitude) << factor;
        // A click would be steeper than the tone itself ever is.
        EXPECT_LT(LargestStep(middle), LargestStep(tone) * 1.3) << factor;
    }
}

TEST(SpeedTest, RampMovesThePositionAsTheFactorsSay) {
    struct Case {
        double start;
        double end;
        int ramp;
        int frames;
        double advance;  // in frames
    };
    const Case cases[] = {{1.5, 7.0, 8000, 8 * kRate, 8 * kRate * 4.25},
                          {1.5, 7.0, 8000, 10 * kRate, 8 * kRate * 4.25 + 2 * kRate * 7.0},
                          {-0.5, -7.0, 8000, 2 * kRate, 2 * kRate * -1.3125},
                          {0.0, 0.0, 0, kRate, 0.0}};
    for (const Case& test : cases) {
        for (const int chunk : {1013, 8192}) {
            LSoundSource source =
                OpenSpeed(std::vector<int>(50 * kRate), test.start, test.end, test.ramp);
            source->Seek(5 * kRate);
            EXPECT_EQ(source->GetPositionSample(), 5 * kRate);
            ReadFrames(source, test.frames, chunk);
            EXPECT_NEAR(source->GetPositionSample() - 5 * kRate, test.advance,
                        kRate / 90.0 * std::max(std::abs(test.end), 1.0));
        }
    }
}

TEST(SpeedTest, EndsAndOddSources) {
    // Rewinding from the very end starts, and ends at frame 0 with silence behind it.
    LSoundSource source = OpenSpeed(std::vector<int>(kRate, 1000), -0.5, -7.0, 1000);
    source->Seek(kRate);
    const std::size_t heard = Play(source).size();
    EXPECT_GT(heard, std::size_t{kRate / 7});
    EXPECT_LT(heard, std::size_t{2 * kRate});
    EXPECT_EQ(source->GetPositionSample(), 0);
    EXPECT_EQ(source->GetEndSample(), 0);
    ReadFrames(source, 2000);
    EXPECT_EQ(ReadFrames(source, 1000), std::vector<int>(1000, 0));

    LSRCSpeed speed(LSoundSource(new MemorySource(RandomSamples(50000, 900, 1), kRate)), 1e9, NAN,
                    LSoundTime(-5));
    std::vector<int> block(8192);
    for (const int frame : {0, 2147483647, -2147483647}) {
        speed.Seek(frame);
        speed.Read(block.data(), 8192);
    }
    const LSoundSource bad;
    EXPECT_EQ(LSPSpeed(2, 2, LSoundTime(0)).OpenSource(bad).Get(), bad.Get());
}

// As on a card of another rate: positions follow the winding, and both ends stop it.
TEST(SpeedTest, ThroughLimiterAndRateConverter) {
    for (const double factor : {-3.0, 3.0, 7.0}) {
        LSoundSource source = OpenSpeed(std::vector<int>(20 * kRate, 9000), factor, factor);
        source->Seek(10 * kRate);
        source = LSPPeakLimit(8000).OpenSource(source);
        LSPConvertSourceRateChannels(2 * kRate, 2, source);
        for (int second = 0; second <= 1; ++second) {
            EXPECT_NEAR(source->GetPositionSample(), (10 + factor * second) * 2 * kRate,
                        0.5 * kRate);
            ReadFrames(source, 2 * kRate);
        }
        const double left = 2 * kRate * (10 / std::abs(factor) - 2);
        EXPECT_NEAR(static_cast<double>(Play(source, 500).size()) / 2, std::max(left, 0.0),
                    0.1 * kRate)
            << factor;
        EXPECT_TRUE(factor > 0 || source->GetPositionSample() == 0) << "it reaches the beginning";
    }
}

// Winding forward through speech that is still being made never plays what has not arrived.
TEST(SpeedTest, StreamingSource) {
    auto* const inner = new MemorySource(std::vector<int>(30000, 5000), kRate);
    inner->SetStreaming(0, 1500);
    LSoundSource source = LSPSpeed(1.5, 3, LSoundTime(200)).OpenSource(LSoundSource(inner));
    while (source->IsStreaming()) {
        for (const int sample : Play(source, 100))
            ASSERT_EQ(sample, 5000);
        source->WaitForStreamingData(1);
    }
    EXPECT_GT(Play(source, 100).size(), 300u);
}

}  // namespace
