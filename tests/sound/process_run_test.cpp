#include <gtest/gtest.h>

#include "sound/source_to_sink.h"
#include "tests/support/memory_sound.h"
#include "tests/support/signals.h"

namespace {

struct TestRun {
    LPRSourceToSink request;
    RecordingSink* sink;
    RecordingProgress progress;

    TestRun(MemorySource* source, int rate, unsigned char channels)
        : sink(new RecordingSink(rate, channels)) {
        request = {"Save", LSoundSource(source), LSoundSink(sink)};
    }
};

TEST(SourceToSinkTest, BlocksFractionsAndLabels) {
    std::vector<int> samples = RandomSamples(20000, kMaxPcm16Peak, 1);
    samples[4000] = -524288;  // what a 16-bit reader makes of -32768: copies stay exact
    TestRun run(new MemorySource(samples, 8000), 8000, 1);
    EXPECT_EQ(Process(run.progress, run.request), kProcessDone);
    EXPECT_EQ(run.sink->samples, samples);
    EXPECT_EQ(run.sink->blockFrames, (std::vector<int>{8192, 8192, 3616}));
    // The first before the run begins.
    EXPECT_EQ(run.progress.fractions, (std::vector<double>{0, 0, 8192 / 20000.0, 16384 / 20000.0}));
    EXPECT_EQ(run.progress.firstLabels, std::vector<std::string>{"Save"});
    EXPECT_EQ(run.progress.secondLabels, std::vector<std::string>{"Please wait..."});
}

TEST(SourceToSinkTest, StartsAtThePositionSilentWhenHiddenAndCancelKeepsWhatWasWritten) {
    const std::vector<int> samples = RandomSamples(20000, 1000, 2);
    for (const int blocks : {0, 2, 9}) {
        TestRun run(new MemorySource(samples, 8000), 8000, 1);
        run.progress.isShown = false;
        run.progress.stopAfter = blocks;
        run.request.source->Seek(500);
        EXPECT_EQ(Process(run.progress, run.request), blocks < 9 ? kProcessStopped : kProcessDone);
        EXPECT_EQ(run.sink->samples,
                  std::vector<int>(samples.begin() + 500,
                                   samples.begin() + std::min(500 + blocks * 8192, 20000)));
        EXPECT_TRUE(run.progress.fractions.empty());
        EXPECT_TRUE(run.progress.firstLabels.empty());
    }
}

TEST(SourceToSinkTest, AdaptsRateChannelsAndPeak) {
    const std::vector<int> loud = Tone(400, 22050, 22050, 4.0 * kMaxPcm16Peak);
    TestRun run(new MemorySource(loud, 22050, 1, 4 * kMaxPcm16Peak), 44100, 2);
    EXPECT_EQ(Process(run.progress, run.request), kProcessDone);
    EXPECT_EQ(run.sink->FramesWritten(), 44100);
    std::vector<int> left;
    for (std::size_t i = 0; i < run.sink->samples.size(); i += 2) {
        ASSERT_EQ(run.sink->samples[i], run.sink->samples[i + 1]);
        ASSERT_LE(std::abs(run.sink->samples[i]), kMaxPcm16Peak + 2);
        left.push_back(run.sink->samples[i]);
    }
    EXPECT_GT(AmplitudeAt(left, 400.0 / 44100), 0.97 * kMaxPcm16Peak);
}

TEST(SourceToSinkTest, FollowsAStreamingSourceAndEndsWithASinkThatCanWriteNoMore) {
    const std::vector<int> samples = RandomSamples(20000, 1000, 4);
    for (const bool isFull : {false, true}) {
        auto* source = new MemorySource(samples, 8000);
        source->SetStreaming(0, 3000);
        TestRun run(source, 8000, 1);
        if (isFull)
            run.sink->FailWrites(ENOSPC);
        EXPECT_EQ(Process(run.progress, run.request), isFull ? kProcessFailed : kProcessDone);
        EXPECT_EQ(run.sink->Finish(), isFull ? ENOSPC : 0);
        EXPECT_EQ(run.sink->FramesWritten(), isFull ? 3000 : 20000);
        EXPECT_EQ(run.sink->samples == samples, !isFull);
    }
}

TEST(SourceToSinkTest, UnusableEndsFailAndEmptySourcesAreDone) {
    const struct {
        std::uint8_t sourceStatus, sinkStatus, sourceChannels;
        LProcessResult result;
        std::size_t samples;
    } cases[] = {{SoundStatus::kInnerNotGood, 0, 1, kProcessFailed, 600},
                 {SoundStatus::kGood, 3, 1, kProcessFailed, 600},
                 {SoundStatus::kGood, 2, 1, kProcessDone, 600},  // only bit 0 refuses
                 {SoundStatus::kGood, 0, 6, kProcessFailed, 600},
                 {SoundStatus::kGood, 0, 1, kProcessDone, 0}};
    for (const auto& [sourceStatus, sinkStatus, channels, result, samples] : cases) {
        auto* source = new MemorySource(RandomSamples(samples, 1000, 5), 8000, channels);
        source->SetStatus(sourceStatus);
        TestRun run(source, 8000, 1);
        run.sink->SetStatus(sinkStatus);
        EXPECT_EQ(Process(run.progress, run.request), result);
        EXPECT_EQ(run.sink->samples.size(), result == kProcessDone ? samples : 0);
    }
}

}  // namespace
