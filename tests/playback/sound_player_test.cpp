#include "playback/sound_player.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numbers>

#include "tests/playback/player_fixture.h"

namespace {

using testing::ElementsAre;

TEST_F(PlayerTest, PlaysEverySampleAndTellsTimesAndLevels) {
    cards_.Insert(0, "speed 2\n");
    EXPECT_TRUE(player_.Start(NumberedSource(14000, 16000, 2)));
    EXPECT_THAT(listener_.log, ElementsAre("play", "time 0"));
    ASSERT_TRUE(RunUntilTold("stop"));
    EXPECT_EQ(player_.Trouble(), PlayTrouble::None);
    EXPECT_FALSE(player_.IsLoaded());

    const std::vector<std::int16_t> received = cards_.Received(0);
    ASSERT_EQ(received.size(), 28000U);
    for (std::size_t i = 0; i < received.size(); ++i)
        ASSERT_EQ(received[i], static_cast<std::int16_t>(i / 2)) << i;
    const std::vector<std::string>& log = listener_.log;
    EXPECT_THAT(std::vector(log.end() - 2, log.end()), ElementsAre("time 875", "stop"));
    // The last block starts at three quarters of a second; its level is the same in both channels.
    EXPECT_TRUE(listener_.Has("time 750"));
    EXPECT_TRUE(listener_.Has("level 7 7"));
}

TEST_F(PlayerTest, ASourceOfLengthZeroEndsAtOnce) {
    cards_.Insert(0, "");
    EXPECT_TRUE(player_.Start(NumberedSource(0)));
    ASSERT_TRUE(RunUntilTold("stop"));
    EXPECT_THAT(listener_.log, ElementsAre("play", "time 0", "time 0", "stop"));
}

TEST_F(PlayerTest, StartWhilePlayingStopsTheOldSourceFirstAndRefusesABadOne) {
    cards_.Insert(0, "");
    EXPECT_TRUE(player_.Start(NumberedSource(64000)));
    LSoundSource second = NumberedSource(64000);
    second->Seek(8000);
    EXPECT_TRUE(player_.Start(second));
    EXPECT_THAT(listener_.log, ElementsAre("play", "time 0", "stop", "play", "time 500"));
    EXPECT_FALSE(player_.Start(LSoundSource()));
    EXPECT_EQ(listener_.log.back(), "stop");
    EXPECT_FALSE(player_.IsLoaded());
    listener_.log.clear();
    player_.Play();
    player_.Cue();
    player_.Seek(5);
    player_.Stop();
    EXPECT_TRUE(listener_.log.empty()) << "nothing is loaded";
}

TEST_F(PlayerTest, PlayAfterCueRepeatsTheLastBlock) {
    cards_.Insert(0, "speed 4\n");
    player_.Start(NumberedSource(48000));
    ASSERT_TRUE(RunUntil([&] { return player_.Position() >= 8000; }));
    player_.Cue();
    EXPECT_TRUE(player_.IsCued());
    const int position = player_.Position();
    EXPECT_EQ(listener_.log[listener_.log.size() - 2], "cue");
    EXPECT_EQ(listener_.log.back(), "time " + std::to_string(position / 16));
    const std::size_t told = listener_.log.size();
    player_.Cue();
    RunFor(50);
    EXPECT_EQ(listener_.log.size(), told) << "silent while cued";

    player_.Play();
    EXPECT_FALSE(player_.IsCued());
    ASSERT_TRUE(RunUntilTold("stop"));
    const std::vector<std::int16_t> before = cards_.Received(0, 1);
    EXPECT_EQ(before, NumbersFrom(0, before.size()));
    EXPECT_EQ(before.size(), static_cast<std::size_t>(position) + 4000) << "one block handed over";
    EXPECT_EQ(cards_.Received(0, 2),
              NumbersFrom(position, static_cast<std::size_t>(48000 - position)));
}

TEST_F(PlayerTest, SeekGoesOnFromThereAndSoundsEvenWhenCued) {
    cards_.Insert(0, "speed 4\n");
    player_.Start(NumberedSource(48000));
    ASSERT_TRUE(RunUntil([&] { return player_.Position() >= 4000; }));
    player_.Seek(40000);
    EXPECT_EQ(listener_.log.back(), "time 2500");
    ASSERT_TRUE(RunUntil([&] { return cards_.Received(0, 2).size() >= 8000; }));
    player_.Cue();
    player_.Seek(44000);
    EXPECT_TRUE(player_.IsCued());
    ASSERT_TRUE(RunUntilTold("stop"));
    EXPECT_EQ(cards_.Received(0, 2), NumbersFrom(40000, 8000));
    EXPECT_EQ(cards_.Received(0, 3), NumbersFrom(44000, 4000));
}

TEST_F(PlayerTest, LoudSoundIsCutOffAndNeverWrapsAroundWhenConverted) {
    cards_.Insert(0, "rates 48000\nchannels 1\nspeed 8\n");
    // Long steps at full scale: the converter overshoots at each.
    std::vector<int> steps(11025);
    for (std::size_t i = 0; i < steps.size(); ++i)
        steps[i] = i / 441 % 2 == 0 ? kMaxPcm16Peak : -kMaxPcm16Peak;
    player_.Start(LSoundSource(new MemorySource(steps, 22050)));
    ASSERT_TRUE(RunUntilTold("stop"));
    int jumps = 0;
    const std::vector<std::int16_t> received = cards_.Received(0);
    for (std::size_t i = 1; i < received.size(); ++i)
        jumps += std::abs(received[i] - received[i - 1]) > 60000;
    EXPECT_GT(received.size(), 23000U);
    EXPECT_EQ(jumps, 0) << "a step takes several frames; only wrapping jumps the whole scale";
}

TEST_F(PlayerTest, ConvertsToWhatTheCardGrants) {
    cards_.Insert(0, "rates 48000\nchannels 2\nspeed 8\n");
    std::vector<int> tone(22050);
    for (std::size_t i = 0; i < tone.size(); ++i)
        tone[i] = static_cast<int>(160000 *
                                   std::sin(2 * std::numbers::pi * 0.02 * static_cast<double>(i)));
    auto* const memory = new MemorySource(tone, 22050);
    const LSoundSource keep(memory);
    player_.Start(keep);
    ASSERT_TRUE(RunUntil([&] { return player_.SampleRate() == 48000; }));
    ASSERT_TRUE(RunUntilTold("stop"));
    const std::vector<std::int16_t> received = cards_.Received(0);
    EXPECT_NEAR(static_cast<double>(received.size()), 96000, 200);
    int crossings = 0;
    int peak = 0;
    for (std::size_t i = 2; i < received.size(); i += 2) {
        EXPECT_EQ(received[i], received[i + 1]);
        crossings += (received[i - 2] < 0) != (received[i] < 0);
        peak = std::max(peak, std::abs(received[i]));
    }
    EXPECT_NEAR(crossings, 882, 3);
    EXPECT_NEAR(peak, 10000, 200);
    // Blocks of 48000 / 4 frames, clamped to 8192.
    for (const std::string& entry : listener_.log) {
        const int milliseconds = entry.starts_with("time ") ? std::stoi(entry.substr(5)) : 0;
        EXPECT_TRUE(milliseconds > 990 || (milliseconds * 48 + 200) % 8192 <= 400) << entry;
    }
    EXPECT_THAT(listener_.log[listener_.log.size() - 2], testing::AnyOf("time 999", "time 1000"));
}

TEST_F(PlayerTest, CuesAndResumesInTheCardsFramesOnceItConverts) {
    cards_.Insert(0, "rates 48000\nchannels 2\nspeed 4\n");
    const LSoundSource source = NumberedSource(48000);
    source->Seek(16000);
    player_.Start(source);
    ASSERT_TRUE(RunUntil([&] { return player_.Position() > 48000; }));
    player_.Cue();
    EXPECT_EQ(listener_.log.back(), "time " + std::to_string(player_.Position() / 48));
    player_.Play();
    ASSERT_TRUE(RunUntilTold("stop"));
    EXPECT_TRUE(listener_.Has("time 3000"));
}

TEST_F(PlayerTest, FortyHertzComeInBlocksOfTwentyFrames) {
    cards_.Insert(0, "rates 40\nspeed 100\n");
    auto* const memory = new MemorySource(Numbered(70), 40);
    const LSoundSource keep(memory);
    player_.Start(keep);
    ASSERT_TRUE(RunUntilTold("stop"));
    EXPECT_THAT(memory->readSizes, ElementsAre(20, 20, 20, 10));
    EXPECT_EQ(cards_.Received(0), NumbersFrom(0, 70));
}

TEST_F(PlayerTest, CardsOfManyChannelsSoundInFront) {
    cards_.Insert(0, "channels 6\nspeed 8\n");
    player_.Start(NumberedSource(4000));
    ASSERT_TRUE(RunUntilTold("stop"));
    const std::vector<std::int16_t> received = cards_.Received(0);
    ASSERT_EQ(received.size(), 24000U);
    for (std::size_t i = 0; i < received.size(); ++i)
        ASSERT_EQ(received[i], i % 6 < 2 ? static_cast<std::int16_t>(i / 6) : 0) << i;
}

TEST_F(PlayerTest, LimitsSourcesThatExceedFullScale) {
    cards_.Insert(0, "speed 8\n");
    player_.Start(
        LSoundSource(new MemorySource(std::vector<int>(8000, 1000000), 16000, 1, 1048744)));
    ASSERT_TRUE(RunUntilTold("stop"));
    const std::vector<std::int16_t> received = cards_.Received(0);
    ASSERT_EQ(received.size(), 8000U);
    for (const std::int16_t sample : received)
        ASSERT_GT(sample, 32000);
}

TEST_F(PlayerTest, StreamingSourcesAreWaitedFor) {
    cards_.Insert(0, "speed 8\n");
    auto* const memory = new MemorySource(Numbered(20000), 16000);
    memory->SetStreaming(0, 5000);
    player_.Start(LSoundSource(memory));
    ASSERT_TRUE(RunUntilTold("stop"));
    EXPECT_EQ(cards_.Received(0), NumbersFrom(0, 20000));
}

TEST_F(PlayerTest, RecoversFromUnderrunSuspendAndRefusedWrites) {
    int card = 0;
    for (const char* fault : {"underrun 10000", "suspend 10000 0", "again 10000"}) {
        cards_.Insert(card, std::string("speed 8\nfault ") + fault + "\n");
        listener_.log.clear();
        player_.SetDevice(LSoundPlayDevice(card));
        player_.Start(NumberedSource(32000));
        ASSERT_TRUE(RunUntilTold("stop")) << fault;
        EXPECT_TRUE(listener_.Has("time 2000")) << fault;
        EXPECT_EQ(player_.Trouble(), PlayTrouble::None) << fault;
        const std::vector<std::int16_t> received = cards_.Received(card);
        EXPECT_GE(received.size(), 28000U) << fault << ": at most one block is lost";
        EXPECT_EQ(received.back(), 31999 - 30000) << fault << ": the end was played";
        ++card;
    }
}

TEST_F(PlayerTest, ACardThatCannotBeOpenedEndsPlaybackAndTellsWhy) {
    cards_.Insert(1, "fault busy\n");
    for (const int card : {1, 2}) {
        listener_.log.clear();
        player_.SetDevice(LSoundPlayDevice(card));
        EXPECT_TRUE(player_.Start(NumberedSource(16000)));
        ASSERT_TRUE(RunUntilTold("stop"));
        EXPECT_THAT(listener_.log, ElementsAre("play", "time 0", "time 1000", "stop"));
        EXPECT_EQ(player_.Trouble(), PlayTrouble::CannotOpen) << card;
    }
}

TEST_F(PlayerTest, ACardThatVanishesLeavesTheStateAndTellsTheOwner) {
    cards_.Insert(0, "speed 8\nfault vanish 12000\n");
    int told = 0;
    player_.SetTroubleHandler([&](PlayTrouble trouble) {
        EXPECT_EQ(trouble, PlayTrouble::DeviceLost);
        EXPECT_TRUE(player_.IsLoaded());
        EXPECT_FALSE(listener_.Has("stop"));
        ++told;
        player_.Stop();
    });
    player_.Start(NumberedSource(64000));
    ASSERT_TRUE(RunUntil([&] { return told > 0; }));
    EXPECT_EQ(listener_.log.back(), "stop");
    RunFor(50);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(player_.Trouble(), PlayTrouble::DeviceLost);
}

TEST_F(PlayerTest, ParametersThatTheCardRefusesLeaveTheStateAndTellTheOwner) {
    // A card of mu-law samples only.
    const std::string path = testing::TempDir() + "/mulaw_card.conf";
    std::ofstream(path) << "pcm.!hw { @args [ CARD ] @args.CARD { type string default \"0\" }\n"
                           " type mulaw slave { pcm { type null } format S16_LE } }\n";
    ::setenv("ALSA_CONFIG_PATH", path.c_str(), 1);
    snd_config_update_free_global();
    PlayTrouble told = PlayTrouble::None;
    player_.SetTroubleHandler([&](PlayTrouble trouble) { told = trouble; });
    player_.Start(NumberedSource(16000));
    ASSERT_TRUE(RunUntil([&] { return told != PlayTrouble::None; }));
    EXPECT_EQ(told, PlayTrouble::CannotSetUp);
    EXPECT_THAT(listener_.log, ElementsAre("play", "time 0"));
    EXPECT_TRUE(player_.IsLoaded());
    player_.Stop();
    EXPECT_EQ(listener_.log.back(), "stop");
}

TEST_F(PlayerTest, StopIsPromptAndReleasesTheSource) {
    cards_.Insert(0, "");
    struct Watched : MemorySource {
        explicit Watched(bool& flag) : MemorySource(Numbered(160000), 16000), gone(flag) {}
        ~Watched() override { gone = true; }
        bool& gone;
    };
    bool gone = false;
    player_.Start(LSoundSource(new Watched(gone)));
    ASSERT_TRUE(RunUntil([&] { return player_.Position() >= 4000; }));
    const auto start = std::chrono::steady_clock::now();
    player_.Stop();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(700));
    EXPECT_TRUE(gone);
    const std::size_t told = listener_.log.size();
    RunFor(50);
    EXPECT_EQ(listener_.log.size(), told) << "late notifications say nothing";
}

TEST_F(PlayerTest, NotificationsDoNotOutliveThePlayer) {
    cards_.Insert(0, "speed 8\n");
    {
        LSoundPlayer shortLived(&listener_, 7, LSoundPlayDevice(0));
        shortLived.Start(NumberedSource(64000));
        while (cards_.Received(0).size() < 16000)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(listener_.log.back(), "stop");
    const std::size_t told = listener_.log.size();
    RunFor(20);
    EXPECT_EQ(listener_.log.size(), told);
}

}  // namespace
