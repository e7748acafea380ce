#include "sound/speed.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/memory_sound.h"
#include "tests/support/signals.h"

namespace {

constexpr int kSpeedRate = 22050;
constexpr double kAmplitude = 400000;

LSoundSource OpenSpeed(std::vector<int> samples, double start, double end, int ramp = 0,
                       unsigned char channels = 1) {
    return LSPSpeed(start, end, LSoundTime(ramp))
        .OpenSource(LSoundSource(new MemorySource(std::move(samples), kSpeedRate, channels)));
}

int LargestStep(const std::vector<int>& samples) {
    int largest = 0;
    for (std::size_t i = 1; i < samples.size(); ++i)
        largest = std::max(largest, std::abs(samples[i] - samples[i - 1]));
    return largest;
}

TEST(SpeedTest, UnitFactorsGiveTheSourceAndItsReverse) {
    for (const unsigned char channels : {std::uint8_t{1}, std::uint8_t{2}}) {
        std::vector<int> samples = RandomSamples(std::size_t{60000} * channels, 524272, 4);
        LSoundSource forwards = OpenSpeed(samples, 1, 1, 0, channels);
        EXPECT_EQ(ReadAll(forwards, 777), samples);

        LSoundSource backwards = OpenSpeed(samples, -1, -1, 0, channels);
        backwards->Seek(60000);
        std::vector<int> heard = ReadAll(backwards, 777);
        ASSERT_GE(heard.size(), samples.size());
        for (std::size_t i = 0; i < samples.size(); ++i)
            ASSERT_EQ(heard[i], samples[samples.size() - i - channels + 2 * (i % channels)]) << i;
    }
}

TEST(SpeedTest, ToneKeepsItsPitchAndTakesItsTime) {
    const std::vector<int> tone = Tone(440, kSpeedRate, 10 * kSpeedRate, kAmplitude);
    for (const double factor : {0.1, 0.5, 1.5, 3.0, 7.0, -0.5, -3.0, -7.0}) {
        LSoundSource source = OpenSpeed(tone, factor, factor);
        if (factor < 0)
            source->Seek(10 * kSpeedRate);
        const std::vector<int> heard = ReadAll(source, 500);
        EXPECT_NEAR(static_cast<double>(heard.size()), 10 * kSpeedRate / std::abs(factor), 800)
            << factor;
        const std::vector<int> middle(heard.begin() + 300, heard.end() - 1200);
        // Places are whole frames, which may put the pitch a thousandth off.
        double strongest = 0;
        for (const double hertz : {439.5, 439.75, 440.0, 440.25, 440.5})
            strongest = std::max(strongest, AmplitudeAt(middle, hertz / kSpeedRate));
        EXPECT_GT(strongest, 0.93 * kAmplitude) << factor;
        // A click would be steeper than the tone itself ever is.
        EXPECT_LT(LargestStep(middle), LargestStep(tone) * 1.3) << factor;
    }
}

TEST(SpeedTest, RampMovesThePositionAsTheFactorsSay) {
    const struct {
        double start, end;
        int frames;
        double advance;  // in frames
    } cases[] = {{1.5, 7.0, 10 * kSpeedRate, 8 * kSpeedRate * 4.25 + 2 * kSpeedRate * 7.0},
                 {-0.5, -7.0, 2 * kSpeedRate, 2 * kSpeedRate * -1.3125},
                 {0.0, 0.0, kSpeedRate, 0.0}};
    for (const auto& test : cases) {
        LSoundSource source =
            OpenSpeed(std::vector<int>(50 * kSpeedRate), test.start, test.end, 8000);
        source->Seek(5 * kSpeedRate);
        EXPECT_EQ(source->GetPositionSample(), 5 * kSpeedRate);
        ReadFrames(source, test.frames, 1013);
        EXPECT_NEAR(source->GetPositionSample() - 5 * kSpeedRate, test.advance,
                    kSpeedRate / 90.0 * std::max(std::abs(test.end), 1.0));
    }
}

// Winding forward through speech that is still being made never plays what has not arrived.
TEST(SpeedTest, StreamingSource) {
    auto* const inner = new MemorySource(std::vector<int>(30000, 5000), kSpeedRate);
    inner->SetStreaming(0, 1500);
    LSoundSource source = LSPSpeed(1.5, 3, LSoundTime(200)).OpenSource(LSoundSource(inner));
    while (source->IsStreaming()) {
        for (const int sample : ReadAll(source, 100))
            ASSERT_EQ(sample, 5000);
        source->WaitForStreamingData(1);
    }
    EXPECT_EQ(inner->framesTooEarly, 0);
    EXPECT_GT(ReadAll(source, 100).size(), 300u);
}

}  // namespace
