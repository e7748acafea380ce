#include "sound/convert_rate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <utility>

#include "sound/convert.h"
#include "tests/support/memory_sound.h"
#include "tests/support/signals.h"

namespace {

struct RatePair {
    int input;
    int output;
};
constexpr RatePair kRates[] = {{16000, 44100}, {48000, 44100}, {48000, 12000}, {48000, 47999}};
constexpr LKernelChoice kRateKernels[] = {LKernelChoice::kPortable, LKernelChoice::kSse2,
                                          LKernelChoice::kAvx2};

class ConvertRateTest : public testing::Test {
protected:
    ~ConvertRateTest() override { SelectSoundKernels(LKernelChoice::kBest); }
};

// Quiet, loud, clipped and beyond full scale in turn, so that the shift changes from block to
// block; then signals whose products add up as far as they can.
std::vector<int> DemandingSignal(const LConvertRateBase& filter) {
    std::vector<int> samples;
    std::uint32_t random = 1;
    for (const int peak : {20, 32767, 32768, 65535, 524272, 524287, 2097152, 1 << 28, 32767, 0}) {
        for (int i = 0; i < 6000; ++i) {
            random = random * 1664525 + 1013904223;
            samples.push_back(
                static_cast<int>(std::int64_t{random} * (2 * std::int64_t{peak} + 1) >> 32) - peak);
        }
        samples.insert(samples.end(), 70, peak);
        samples.insert(samples.end(), 70, -peak);
    }
    // Each row meets the samples of its own signs in full, by far more than twice full scale.
    const std::int64_t phases = filter.Phases();
    const std::int64_t step = filter.Step();
    for (std::int64_t frame = 0; frame < phases; ++frame) {
        const std::int64_t start = frame * step / phases - 32;
        const auto periods = (static_cast<std::int64_t>(samples.size()) - start) / step + 1;
        samples.resize(static_cast<std::size_t>(start + periods * step));
        const auto row = static_cast<int>(frame * step % phases);
        for (int tap = 0; tap < 63; ++tap)
            samples.push_back(filter.Coefficient(row, tap) >= 0 ? 524272 : -524288);
    }
    samples.resize(samples.size() + 9000);
    return samples;
}

std::uint64_t Checksum(const std::vector<int>& samples) {
    std::uint64_t sum = 14695981039346656037U;
    for (const int sample : samples)
        sum = (sum ^ static_cast<std::uint32_t>(sample)) * 1099511628211U;
    return sum;
}

TEST_F(ConvertRateTest, EveryKernelGivesTheSameBits) {
    // Of what all kernels gave when each was equal to a plain rendering of the arithmetic, with the
    // coefficients of an independent one.
    const std::pair<RatePair, std::uint64_t> cases[] = {{{16000, 44100}, 14382171728021699845U},
                                                        {{48000, 44100}, 9484666344734604322U},
                                                        {{48000, 12000}, 6615420038526597453U},
                                                        {{48000, 47999}, 4474004699384835189U}};
    std::set<std::string> names;
    for (const auto& [rates, sum] : cases) {
        SCOPED_TRACE(std::to_string(rates.input) + " to " + std::to_string(rates.output));
        const LConvertRateBase filter(rates.input, rates.output, false);
        const std::vector<int> left = DemandingSignal(filter);
        std::vector<int> both;
        for (std::size_t i = 0; i < left.size(); ++i)
            both.insert(both.end(), {left[i], left[left.size() - 1 - i]});
        const int frames = static_cast<int>(std::min<std::int64_t>(
            std::int64_t{static_cast<int>(left.size())} * filter.Phases() / filter.Step(), 150000));
        for (const LKernelChoice kernel : kRateKernels) {
            if (!SelectSoundKernels(kernel))
                continue;
            names.insert(SoundKernels().name);
            std::vector<int> heard;
            for (const auto& [samples, channels] :
                 {std::pair{left, std::uint8_t{1}}, {both, std::uint8_t{2}}}) {
                LSoundSource source(new LSRCConvertRate(
                    LSoundSource(new MemorySource(samples, rates.input, channels)), rates.output,
                    false));
                const std::vector<int> part = ReadFrames(source, frames / channels, 777);
                heard.insert(heard.end(), part.begin(), part.end());
            }
            EXPECT_EQ(Checksum(heard), sum) << SoundKernels().name;
        }
    }
    // Each was compared, not one of them with itself.
    EXPECT_EQ(names.size(), SelectSoundKernels(LKernelChoice::kAvx2)   ? 3u
                            : SelectSoundKernels(LKernelChoice::kSse2) ? 2u
                                                                       : 1u);
    EXPECT_TRUE(SelectSoundKernels(LKernelChoice::kPortable));
    EXPECT_STREQ(SoundKernels().name, "portable");
}

TEST_F(ConvertRateTest, PositionEndAndSeek) {
    for (const RatePair& rates : kRates) {
        const std::vector<int> samples = RandomSamples(100000, 32000, 9);
        auto* const inner = new MemorySource(samples, rates.input);
        auto* const converter = new LSRCConvertRate(LSoundSource(inner), rates.output, false);
        LSoundSource source(converter);
        const std::int64_t phases = converter->Phases();
        const std::int64_t step = converter->Step();
        EXPECT_EQ(source->GetPositionSample(), 0);
        EXPECT_EQ(source->GetEndSample(), 100000 * phases / step);
        EXPECT_EQ(source->SampleRate(), rates.output);
        EXPECT_EQ(source->PeakMagnitude(), 2 * kMaxPcm16Peak);

        const std::vector<int> whole = ReadFrames(source, 20000);
        const auto aligned = static_cast<int>(20000 * step / phases);  // whole input frames
        EXPECT_EQ(source->GetPositionSample(), aligned * phases / step);

        for (const int frame : {7001, 12345, 0}) {
            source->Seek(frame);
            EXPECT_EQ(inner->seeks.back(), frame * step / phases - 31);
            EXPECT_EQ(source->GetPositionSample(), frame * step / phases * phases / step);
            const std::vector<int> got = ReadFrames(source, 500);
            // One window slot holds silence after a seek: everything after it is the same stream.
            const auto first = static_cast<std::ptrdiff_t>(phases / step) + 1;
            EXPECT_TRUE(std::equal(got.begin() + first, got.end(), whole.begin() + frame + first))
                << rates.input << " to " << rates.output << " at " << frame;
        }
    }
}

// One filter has too few phases and too few taps for the first two; the others must do no harm.
TEST_F(ConvertRateTest, ExtremeRatiosKeepLengthAndLevel) {
    for (const RatePair& rates : {RatePair{100, 44100}, RatePair{192000, 8000}}) {
        const std::vector<int> level(static_cast<std::size_t>(rates.input), 300000);
        LSoundSource source = LSPConvertRate(rates.output)
                                  .OpenSource(LSoundSource(new MemorySource(level, rates.input)));
        EXPECT_NEAR(source->GetEndSample(), rates.output, rates.output * 0.03);
        const std::vector<int> got = ReadFrames(source, rates.output / 2);
        EXPECT_NEAR(got.back(), 300000, 6000) << rates.input << " to " << rates.output;
    }
    for (const RatePair& rates :
         {RatePair{2147483647, 8000000}, RatePair{1, 2147483647}, RatePair{44100, 0}}) {
        LSoundSource source(new MemorySource(RandomSamples(50000, 2147483647, 3), rates.input, 2));
        source = LSPConvertRate(rates.output).OpenSource(source);
        EXPECT_EQ(source->SampleRate(), rates.output > 0 ? rates.output : 44100);
        EXPECT_EQ(source->Status() == SoundStatus::kInvalidFormat, rates.output == 0);
        source->Seek(2000000000);
        source->Seek(-5);
        ReadFrames(source, 20);
    }
}

// Tones keep their level, and images or aliases stay below what this filter promises.
TEST_F(ConvertRateTest, PassesAndStopsTones) {
    struct Case {
        RatePair rates;
        std::vector<double> passed;
        std::vector<double> stopped;
        double tolerance;  // decibels
    };
    const Case cases[] = {{{16000, 44100}, {200, 1000, 3000, 6000, 6900}, {}, 0.4},
                          {{48000, 44100}, {200, 1000, 5000, 12000, 18000}, {23500}, 0.2},
                          {{44100, 22050}, {200, 1000, 4000, 8500}, {12500, 16000, 20000}, 0.2},
                          {{48000, 8000}, {200, 1000, 2000, 2800}, {5500, 9000, 15000, 22000}, 0.3},
                          {{192000, 12000}, {200, 3000}, {8000, 20000, 90000}, 0.3},
                          {{8000, 48000}, {200, 1000, 3000}, {}, 0.4}};
    for (const Case& test : cases) {
        const auto measure = [&](double hertz, bool isPassed) {
            const std::vector<int> tone =
                Tone(hertz, test.rates.input, 4 * test.rates.input / 5, 300000);
            auto* const inner = new MemorySource(tone, test.rates.input);
            LSoundSource source = LSPConvertRate(test.rates.output).OpenSource(LSoundSource(inner));
            const std::vector<int> ours = ReadAll(source);
            // The ratio is an approximation: the tone comes out where the real one puts it.
            const double ratio =
                static_cast<double>(tone.size()) / static_cast<double>(ours.size());
            double cycles = hertz / test.rates.input * ratio;
            cycles = std::abs(cycles - std::round(cycles));
            const double gain = 20 * std::log10(AmplitudeAt(ours, cycles) / 300000);
            if (!isPassed) {
                EXPECT_LT(gain, -42) << hertz << " of " << test.rates.input;
                return;
            }
            EXPECT_NEAR(gain, 0, test.tolerance) << hertz << " of " << test.rates.input;
            EXPECT_NEAR(ratio * test.rates.output / test.rates.input, 1.0, 0.003);
        };
        for (const double hertz : test.passed)
            measure(hertz, true);
        for (const double hertz : test.stopped)
            measure(hertz, false);
    }
}

}  // namespace
