// Sources whose data is still being made, through every chain that a player or a save puts on them.
#include <gtest/gtest.h>

#include "sound/convert.h"
#include "tests/support/memory_sound.h"
#include "tests/support/signals.h"

namespace {

TEST(StreamingTest, EveryChainFollowsToTheExactEndAndReadsNoFurtherThanWhatIsThere) {
    const struct {
        int rate;
        std::uint8_t channels;
        int limit;  // of the limiter in front; 0: none
        int outputRate;
        std::uint8_t outputChannels;
    } chains[] = {{22050, 1, 0, 48000, 1},    {48000, 2, 0, 8000, 1},    {192000, 1, 0, 12000, 1},
                  {100, 1, 0, 44100, 1},      {16000, 1, 0, 16000, 2},   {16000, 2, 0, 16000, 1},
                  {16000, 1, 2000, 44100, 2}, {44100, 2, 2000, 44100, 2}};
    for (const auto& chain : chains) {
        const std::vector<int> samples = RandomSamples(9000u * chain.channels, 1000, 11);
        const auto open = [&](MemorySource* memory) {
            LSoundSource source(memory);
            if (chain.limit > 0)
                source = LSPPeakLimit(chain.limit).OpenSource(source);
            LSPConvertSourceRateChannels(chain.outputRate, chain.outputChannels, source);
            return source;
        };
        LSoundSource file = open(new MemorySource(samples, chain.rate, chain.channels));
        const std::vector<int> expected = ReadAll(file);
        for (const auto& [available, portion] : {std::pair{0, 7}, {50, 777}, {9000, 1}}) {
            auto* const memory = new MemorySource(samples, chain.rate, chain.channels);
            memory->SetStreaming(available, portion);
            LSoundSource source = open(memory);
            std::vector<int> got;
            for (bool isStreaming = true; isStreaming; source->WaitForStreamingData(1)) {
                isStreaming = source->IsStreaming();
                const std::vector<int> part = ReadAll(source, 501);
                got.insert(got.end(), part.begin(), part.end());
            }
            EXPECT_EQ(memory->framesTooEarly, 0);
            // A position leaves the phase out, so that the end may come a frame of the source
            // early or late.
            const int frame = (chain.outputRate / chain.rate + 1) * chain.outputChannels;
            ASSERT_LE(std::abs(std::ssize(got) - std::ssize(expected)),
                      chain.rate == chain.outputRate ? 0 : frame);
            const auto common = std::min(std::ssize(got), std::ssize(expected));
            ASSERT_TRUE(std::equal(got.begin(), got.begin() + common, expected.begin()))
                << chain.rate << " to " << chain.outputRate << " in portions of " << portion;
        }
    }
}

}  // namespace
