#include <gtest/gtest.h>

#include <climits>
#include <tuple>

#include "foundation/settings/dat_file.h"
#include "sound/level.h"
#include "sound/sound_time.h"
#include "tests/support/memory_sound.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/signals.h"

namespace {

TEST(StreamModelTest, InvalidFormatsAreReplacedAndFlagged) {
    const struct {
        int rate;
        std::uint8_t channels;
        int sourceRate;
        std::uint8_t sourceStatus, sinkStatus;
    } cases[] = {{44100, 2, 44100, 0, 0}, {0, 1, 44100, 3, 0}, {8000, 0, 8000, 3, 1}};
    for (const auto& test : cases) {
        const MemorySource source({}, test.rate, test.channels);
        const RecordingSink sink(test.rate, test.channels);
        EXPECT_EQ(source.SampleRate(), test.sourceRate);
        EXPECT_EQ(sink.SampleRate(), test.rate);
        EXPECT_EQ(source.Channels(), std::max(int{test.channels}, 1));
        EXPECT_EQ(sink.Channels(), source.Channels());
        EXPECT_EQ(source.Status(), test.sourceStatus);
        EXPECT_EQ(sink.Status(), test.sinkStatus);
    }
}

class PassThrough : public LSoundProcessBase {
public:
    using LSoundProcessBase::LSoundProcessBase;
    void Read(int* buffer, int frames) override { inner_->Read(buffer, frames); }
};

TEST(StreamModelTest, HandlesShareAndNeverPointAtNothing) {
    LSoundSource first(new MemorySource({1, 2, 3}, 8000));
    LSoundSource second = first;
    first.Close();
    EXPECT_EQ(first->SampleRate(), 11025);
    EXPECT_EQ(first->Channels(), 1);
    EXPECT_EQ(first->PeakMagnitude(), 2097152);
    EXPECT_EQ(first->Status(), SoundStatus::kPlaceholder);
    EXPECT_EQ(first->GetEndSample(), 0);
    EXPECT_EQ(ReadFrames(first, 5), std::vector<int>(5, 0));
    // A wrapper keeps its inner source, and replacing a handle by what wraps it is safe.
    second = LSoundSource(new PassThrough(second));
    EXPECT_EQ(ReadFrames(second, 4), (std::vector<int>{1, 2, 3, 0}));
    EXPECT_EQ(second->GetPositionSample(), 4);
    EXPECT_EQ(second->Status(), SoundStatus::kGood);
    EXPECT_EQ(PassThrough(first).Status(), SoundStatus::kInnerNotGood);
    LSoundSink sink(new RecordingSink(8000, 2));
    sink = LSoundSink(sink);
    EXPECT_EQ(sink->Status(), 0);
    sink.Close();
    const int frame[] = {1, 2};
    sink->Write(frame, 1);
    EXPECT_EQ(sink->SampleRate(), 44100);
    EXPECT_EQ(sink->Status(), 1);
}

TEST(SoundTimeTest, ReadsClockTexts) {
    const std::pair<const char*, int> cases[] = {{"1:02:03.5", 3723500}, {"90", 90000},
                                                 {"1:30", 90000},        {"-0:01.25", -1250},
                                                 {"1.2345", 1234},       {"abc", 0},
                                                 {"1.2.3", 1230},        {"5-", -5000},
                                                 {" 7 s", 7000},         {"12:34:56", 45296000}};
    for (const auto& [text, milliseconds] : cases) {
        LSoundTime time(99);
        time.SetText(text);
        EXPECT_EQ(time.Milliseconds(), milliseconds) << text;
    }
    LSoundTime endless;
    endless.SetText("99999999999999999999:99:99999999999999");
}

TEST(SoundTimeTest, WritesEveryForm) {
    using T = LSoundTime;
    const std::tuple<void (T::*)(char*) const, int, const char*> cases[] = {
        {&T::_GetText0, 3723456, "1:02:03"},
        {&T::_GetText1, 3723456, "1:02:03.5"},
        {&T::_GetText2, 3723456, "1:02:03.46"},
        {&T::_GetTextHMMSSFFF, 3723456, "1:02:03.456"},
        {&T::_GetTextHMMSSFF, 3723456, "1:02:03.45"},
        {&T::_GetTextHMMSSF, 3723456, "1:02:03.4"},
        {&T::_GetTextMMSSF, 3723456, "02:03.4"},
        {&T::_GetTextMMSS, 3723456, "02:03"},
        {&T::_GetText0, 3599500, "1:00:00"},
        {&T::_GetText, INT_MIN, "-596:31:23.648"}};
    for (const auto& [writer, milliseconds, expected] : cases) {
        char text[kSoundTimeTextSize];
        (T(milliseconds).*writer)(text);
        EXPECT_STREQ(text, expected);
    }
    EXPECT_EQ(LSoundTime::FromFrames(2147483647, 44100).Milliseconds(), 48695774);
    EXPECT_EQ(LSoundTime(48695774).ToFrames(44100), 2147483633);
    EXPECT_EQ(LSoundTime::FromFrames(5, 0).Milliseconds(), 0);
}

TEST(LevelTest, DecibelsTextsAndTables) {
    const std::pair<const char*, int> cases[] = {{"-6", -6},   {"300", 127},        {"-300", -127},
                                                 {"--", -127}, {"+12 dB", 12},      {"", 0},
                                                 {"abc", 0},   {"99999999999", 127}};
    for (const auto& [text, value] : cases) {
        LDB level(5);
        level.SetText(text);
        EXPECT_EQ(level.Value(), value) << text;
    }
    for (const auto& [level, amplitude] :
         {std::pair{0, 16777216}, {-127, 0}, {-6, 8408526}, {127, 2147483647}})
        EXPECT_EQ(LDB::tab.Amplitude(LDB(level)), amplitude);
    EXPECT_EQ(LDB::tab.Power(LDB(0)), 16777216);
    EXPECT_EQ(LDB::tab.Power(LDB(-127)), 0);
}

TEST(LevelTest, LevelsAndTimesAreKeptInDataFiles) {
    const ScratchFolder folder;
    LDatFile file((folder / "f").c_str());
    file.SetDB("S", "low", LDB(-126));
    file.SetDB("S", "silent", LDB(LDB::kSilence));
    file.SetSoundTime("S", "at", LSoundTime(90500));
    file.Flush();
    EXPECT_EQ(folder.Read("f"), "[S]\r\nlow=-126dB\r\nsilent=--dB\r\nat=0:01:30.500\r\n\r\n");
    EXPECT_EQ(file.GetDB("S", "low", LDB(1)), LDB(-126));
    EXPECT_EQ(file.GetDB("S", "silent", LDB(1)), LDB(LDB::kSilence));
    EXPECT_EQ(file.GetDB("S", "absent", LDB(1)), LDB(1));
    EXPECT_EQ(file.GetSoundTime("S", "at", LSoundTime(1)).Milliseconds(), 90500);
}

TEST(LevelTest, BufferRoutines) {
    const int samples[] = {5, -9, 7, 3200, -2147483647 - 1};
    EXPECT_EQ(GetBufferPeak(samples, 3, 1), 9);
    EXPECT_EQ(GetBufferPeak(samples, 0, 1), 0);
    EXPECT_EQ(GetBufferPeak(samples, -1, 1), 0);
    EXPECT_EQ(GetBufferPeak(samples, 5, 1), 2147483647);
    EXPECT_EQ(GetBufferPeakChan(0, samples, 2, 2), 7);
    EXPECT_EQ(GetBufferPeakChan(1, samples, 1, 2), 9);
    EXPECT_EQ(GetBufferMeanSquare(samples + 3, 1, 1), 8192);  // 10000 without the dropped bits
    EXPECT_EQ(GetBufferMeanSquare(samples, 0, 1), 0);
    const int stereo[] = {3200, 524272, -3200, -524272, 0, 0};
    EXPECT_EQ(GetBufferMeanSquareChan(0, stereo, 3, 2), 2 * 8192 / 3);
    EXPECT_EQ(GetBufferMeanSquareChan(0, stereo, 6, 1), GetBufferMeanSquare(stereo, 6, 1));
    LDBMC levels;
    levels = GetBufferLevels(stereo, 2, 2);
    EXPECT_TRUE(levels.Channels() == 2 && levels[1] == LDB(15));

    const std::pair<int, int> meters[] = {{0, -127},        {8388626, 0},  {1, -69},
                                          {268419072, 15},  {838863, -10}, {7475000, -1},
                                          {2147483647, 24}, {7480000, 0}};
    for (const auto& [meanSquare, level] : meters)
        EXPECT_EQ(GetMeterLevel(meanSquare).Value(), level) << meanSquare;

    int clipped[] = {524273, 524272, -524289, -524288, 1 << 30};
    LSoundPeakLimit(clipped, 5);
    EXPECT_EQ(std::vector<int>(clipped, clipped + 5),
              (std::vector<int>{524272, 524272, -524288, -524288, 524272}));
    int gained[] = {1000, -1000, 1 << 30, 77};
    GainAudioBufferQuick(1024, gained, 3);
    EXPECT_EQ(std::vector<int>(gained, gained + 4), (std::vector<int>{2000, -2000, 0, 77}));
    GainAudioBufferQuickChan(1, 256, gained, 2, 2);
    EXPECT_EQ(std::vector<int>(gained, gained + 4), (std::vector<int>{2000, -1000, 0, 38}));
}

}  // namespace
