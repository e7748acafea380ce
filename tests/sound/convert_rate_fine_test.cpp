#include "sound/convert_rate_fine.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "sound/convert.h"
#include "sound/dither.h"
#include "sound/level.h"
#include "tests/support/memory_sound.h"
#include "tests/support/signals.h"

namespace {

constexpr double kLevel = 400000;

struct FineRates {
    int input;
    int output;
};
constexpr FineRates kFineRates[] = {{16000, 44100}, {22050, 48000}, {48000, 44100},
                                    {44100, 22050}, {48000, 8000},  {44099, 48000}};

LSoundSource Fine(const std::vector<int>& samples, const FineRates& rates,
                  unsigned char channels = 1) {
    return LSPConvertRateFine(rates.output)
        .OpenSource(LSoundSource(new MemorySource(samples, rates.input, channels)));
}

double Decibels(double ratio) {
    return 20 * std::log10(std::max(ratio, 1e-12));
}

// What is left of the middle of the samples once the tone is taken out, in decibels below it.
double NoiseBelowTone(const std::vector<int>& samples, double radians) {
    double cc = 0, ss = 0, cs = 0, pc = 0, ps = 0, power = 0, noise = 0;
    const std::size_t first = samples.size() / 4;
    const auto each = [&](auto use) {
        for (std::size_t i = first; i < 3 * first; ++i)
            use(std::cos(radians * static_cast<double>(i)),
                std::sin(radians * static_cast<double>(i)), samples[i]);
    };
    each([&](double c, double s, double p) {
        cc += c * c, ss += s * s, cs += c * s, pc += p * c, ps += p * s, power += p * p;
    });
    const double determinant = cc * ss - cs * cs;
    const double a = (pc * ss - ps * cs) / determinant;
    const double b = (ps * cc - pc * cs) / determinant;
    each([&](double c, double s, double p) { noise += std::pow(p - a * c - b * s, 2); });
    return Decibels(std::sqrt(noise / power));
}

TEST(ConvertRateFineTest, LengthIsExactTonesPassUnharmedAndNothingElseComesOut) {
    for (const FineRates& rates : kFineRates) {
        SCOPED_TRACE(std::to_string(rates.input) + " to " + std::to_string(rates.output));
        const double lower = std::min(rates.input, rates.output) / 2.0;
        for (const double part : {0.02, 0.4, 0.95}) {
            const double hertz = lower * part;
            LSoundSource source = Fine(Tone(hertz, rates.input, rates.input, kLevel), rates);
            const std::vector<int> got = ReadAll(source);
            EXPECT_EQ(std::ssize(got), rates.output);
            EXPECT_NEAR(Decibels(AmplitudeAt(got, hertz / rates.output) / kLevel), 0, 0.1);
            EXPECT_LT(NoiseBelowTone(got, 2 * std::numbers::pi * hertz / rates.output), -110);
        }
        // Above what the new rate holds: gone, not folded down.
        if (rates.input > rates.output * 1.05) {
            LSoundSource source = Fine(Tone(lower * 1.02, rates.input, rates.input, kLevel), rates);
            const std::vector<int> got = ReadAll(source);
            // The tone's sudden beginning and end are of all frequencies.
            const int* const middle = got.data() + rates.output / 4;
            EXPECT_LT(GetBufferPeak(middle, rates.output / 2, 1), kLevel / 100000);
        }
    }
}

TEST(ConvertRateFineTest, SoughtFramesAreThoseOfTheWholeAndPositionsFollow) {
    for (const FineRates& rates : kFineRates) {
        SCOPED_TRACE(std::to_string(rates.input) + " to " + std::to_string(rates.output));
        const std::vector<int> samples = RandomSamples(120000, 300000, 9);
        LSoundSource source = Fine(samples, rates, 2);
        EXPECT_EQ(source->PeakMagnitude(), 2 * kMaxPcm16Peak);
        const std::vector<int> whole = ReadAll(source, 777);
        for (const int frame : {9001, 7, 0, -5}) {
            source->Seek(frame);
            EXPECT_EQ(source->GetPositionSample(), frame);
            const std::vector<int> got = ReadFrames(source, 600, 77);
            EXPECT_EQ(source->GetPositionSample(), frame + 600);
            for (int i = 0; i < 1200; ++i) {
                const int at = 2 * frame + i;
                // The library adds in another order.
                ASSERT_NEAR(got[static_cast<std::size_t>(i)],
                            at < 0 ? 0 : whole[static_cast<std::size_t>(at)], 2)
                    << frame << " and " << i;
            }
        }
    }
}

TEST(DitherTest, SixteenBitSoundPassesAndFinerSoundBecomesNoiseInsteadOfATone) {
    std::vector<int> coarse = RandomSamples(9000, 32767, 3);
    for (int& sample : coarse)
        sample *= 16;
    LSoundSource unchanged(new LSRCDither(LSoundSource(new MemorySource(coarse, 8000))));
    EXPECT_EQ(ReadAll(unchanged), coarse);

    // A third of a 16-bit step: rounding alone would leave silence.
    constexpr double kThird = 16 / 3.0;
    LSoundSource source(
        new LSRCDither(LSoundSource(new MemorySource(Tone(500, 8000, 64000, kThird), 8000))));
    const std::vector<int> got = ReadAll(source);
    for (const int sample : got)
        ASSERT_TRUE(sample % 16 == 0 && std::abs(sample) <= 32) << sample;
    EXPECT_NEAR(AmplitudeAt(got, 500.0 / 8000), kThird, 0.5);
    EXPECT_LT(AmplitudeAt(got, 1500.0 / 8000), 0.4);
}

}  // namespace
