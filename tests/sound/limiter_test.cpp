#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "sound/convert.h"
#include "sound/convert_channels.h"
#include "sound/kernels.h"
#include "sound/peak_limit.h"
#include "sound/speed.h"
#include "tests/support/memory_sound.h"
#include "tests/support/signals.h"

namespace {

constexpr int kLimiterRate = 8000;
constexpr int kLimiterBlock = kLimiterRate / 35;

std::vector<int> Limited(const std::vector<int>& samples, int limit, unsigned char channels = 1,
                         int chunk = kMaxBlockFrames) {
    LSoundSource source = LSPPeakLimit(limit).OpenSource(
        LSoundSource(new MemorySource(samples, kLimiterRate, channels)));
    return ReadAll(source, chunk);
}

TEST(PeakLimitTest, StaysWithinTheLimitWhateverComes) {
    // Blocks whose peaks jump, each peak at the first, the last or any frame.
    std::mt19937 engine(17);
    for (int round = 0; round < 60; ++round) {
        std::vector<int> samples(static_cast<std::size_t>(30 * kLimiterBlock));
        for (std::size_t block = 0; block < 30; ++block) {
            const std::size_t places[] = {0, kLimiterBlock - 1, engine() % kLimiterBlock};
            const int peak = static_cast<int>(engine() >> (1 + engine() % 15));
            samples[block * kLimiterBlock + places[engine() % 3]] =
                engine() % 2 != 0 ? peak : -peak;
        }
        for (const int limit : {kMaxPcm16Peak, 1000, 4194303}) {
            const std::vector<int> out = Limited(samples, limit);
            ASSERT_EQ(out.size(), samples.size());
            const auto [low, high] = std::minmax_element(out.begin(), out.end());
            EXPECT_LE(*high, limit);
            EXPECT_GE(*low, -limit - 2);
        }
    }
}

// The gain's course over one loud block among quiet ones, and the arithmetic of each sample, for
// every channel count and kernel.
TEST(PeakLimitTest, GainFallsBeforeAndRecoversAfterALoudBlock) {
    constexpr int kQuiet = 262144;
    constexpr int kLoudBlock = 10;
    const int unity = LSRCPeakLimit::kUnityGain;
    const int half = kMaxPcm16Peak * 512 / ((2 * kMaxPcm16Peak + 64) / 64) * 512;
    const auto target = [&](int block) {  // gain at the end of a block
        if (block >= kLoudBlock - 2 && block <= kLoudBlock)
            return half;
        return block == kLoudBlock + 1 ? (half + 3 * unity) / 4 : unity;
    };
    std::vector<int> mono(30 * kLimiterBlock, kQuiet);
    mono[kLoudBlock * kLimiterBlock + 5] = 2 * kMaxPcm16Peak;
    std::vector<int> expected;
    int gain = unity;
    for (int block = 0; block < 30; ++block) {
        const int difference = target(block) - gain;
        gain += difference % kLimiterBlock;
        for (int i = 0; i < kLimiterBlock; ++i, gain += difference / kLimiterBlock) {
            const int s = mono[static_cast<std::size_t>(block * kLimiterBlock + i)];
            expected.push_back((s >> 12) * (gain >> 12) + ((gain >> 12) * (s & 4095) >> 12) +
                               ((s >> 12) * (gain & 4095) >> 12));
        }
    }
    EXPECT_LT(expected[(kLoudBlock - 1) * kLimiterBlock], kQuiet * 6 / 10);
    EXPECT_EQ(expected.back(), kQuiet);
    for (const auto kernel : {LKernelChoice::kPortable, LKernelChoice::kBest}) {
        SelectSoundKernels(kernel);
        for (const unsigned char channels : {std::uint8_t{1}, std::uint8_t{2}, std::uint8_t{5}}) {
            std::vector<int> many;
            for (const int sample : mono)
                many.insert(many.end(), channels, sample);
            const std::vector<int> out = Limited(many, kMaxPcm16Peak, channels, 1001);
            for (std::size_t i = 0; i < out.size(); ++i)
                ASSERT_EQ(out[i], expected[i / channels]) << i << " of " << int{channels};
        }
    }
}

TEST(PeakLimitTest, BlocksAndPositions) {
    for (const auto& [rate, frames] : {std::pair{44100, 1260}, {100, 16}, {2000000, 8192}}) {
        LSRCPeakLimit limiter(LSoundSource(new MemorySource({}, rate)), 1);
        EXPECT_EQ(limiter.BlockFrames(), frames);
    }
    const std::vector<int> samples = RandomSamples(5000, 1000, 1);
    LSoundSource source(
        new LSRCPeakLimit(LSoundSource(new MemorySource(samples, kLimiterRate, 1, 2000000)), 5000));
    EXPECT_EQ(source->PeakMagnitude(), 5000);
    // What stays within the limit passes unchanged.
    for (const int position : {0, 77, 154, 4000}) {
        if (position == 4000)
            source->Seek(position);
        EXPECT_EQ(source->GetPositionSample(), position);
        EXPECT_EQ(ReadFrames(source, 77),
                  std::vector<int>(samples.begin() + position, samples.begin() + position + 77));
    }
}

TEST(ConvertFactoriesTest, ChannelsAndChoices) {
    for (const auto kernel : {LKernelChoice::kPortable, LKernelChoice::kBest}) {
        SelectSoundKernels(kernel);
        const std::vector<int> samples = RandomSamples(2 * 9001, 1 << 30, 8);
        LSoundSource left =
            LSPConvChannels(1).OpenSource(LSoundSource(new MemorySource(samples, kLimiterRate, 2)));
        const std::vector<int> kept = ReadFrames(left, 9001, 9001);
        LSoundSource doubled =
            LSPConvChannels(2).OpenSource(LSoundSource(new MemorySource(kept, kLimiterRate)));
        const std::vector<int> both = ReadFrames(doubled, 9001, 3000);
        for (std::size_t i = 0; i < kept.size(); ++i) {
            ASSERT_EQ(kept[i], samples[2 * i]);
            ASSERT_EQ(both[2 * i], kept[i]);
            ASSERT_EQ(both[2 * i + 1], kept[i]);
        }
    }
    const LSoundSource surround(new MemorySource({}, kLimiterRate, 6));
    EXPECT_EQ(LSPConvChannels(2).OpenSource(surround).Get(), surround.Get());
    const LSoundSource bad;
    for (const LSoundSource& same :
         {LSPConvChannels(2).OpenSource(bad), LSPConvertRate(8000).OpenSource(bad),
          LSPPeakLimit(100).OpenSource(bad), LSPSpeed(2, 2, LSoundTime(0)).OpenSource(bad)})
        EXPECT_EQ(same.Get(), bad.Get());
    // Channels are reduced before the rate is converted and added after it.
    for (const int from : {1, 2}) {
        LSoundSource source(new MemorySource({}, 22050, static_cast<std::uint8_t>(from)));
        LSPConvertSourceRateChannels(44100, static_cast<std::uint8_t>(3 - from), source);
        EXPECT_EQ(source->Channels(), 3 - from);
        EXPECT_EQ(dynamic_cast<LSRCConvMonoStereo*>(source.Get()) != nullptr, from == 1);
    }
}

}  // namespace
