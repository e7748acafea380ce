#include "playback/sound_player.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <numbers>
#include <numeric>

#include "playback/card_clock.h"
#include "tests/playback/player_fixture.h"

namespace {

using testing::ElementsAre;

TEST_F(PlayerTest, PlaysEverySampleAndTellsTimesAndLevels) {
    cards_.Insert(0, "speed 2\n");
    EXPECT_TRUE(player_->Start(NumberedSource(14000, 16000, 2)));
    ASSERT_TRUE(RunUntilTold("stop"));
    EXPECT_EQ(player_->Trouble(), PlayTrouble::kNone);
    std::vector<std::int16_t> expected;
    for (const std::int16_t number : NumbersFrom(0, 14000))
        expected.insert(expected.end(), 2, number);
    EXPECT_EQ(cards_.Played(0), expected);
    const auto& log = listener_.log;
    EXPECT_THAT(std::vector(log.end() - 3, log.end()),
                ElementsAre("level -127 -127", "time 875", "stop"));
    // The last block starts at three quarters of a second.
    EXPECT_TRUE(listener_.Has("time 750"));
    EXPECT_TRUE(listener_.Has("level 7 7"));

    listener_.log.clear();
    player_->Start(NumberedSource(0));
    ASSERT_TRUE(RunUntilTold("stop"));
    EXPECT_THAT(log, ElementsAre("play", "time 0", "time 0", "stop"));
}

TEST_F(PlayerTest, StartStopsTheOldSourceFirstAndRefusesABadOne) {
    cards_.Insert(0, "");
    struct Watched : MemorySource {
        explicit Watched(bool& flag) : MemorySource(Numbered(64000), 16000), gone(flag) {}
        ~Watched() override { gone = true; }
        bool& gone;
    };
    bool isGone = false;
    EXPECT_TRUE(player_->Start(LSoundSource(new Watched(isGone))));
    LSoundSource second = NumberedSource(64000);
    second->Seek(8000);
    EXPECT_TRUE(player_->Start(second));
    EXPECT_TRUE(isGone);
    EXPECT_THAT(listener_.log, ElementsAre("play", "time 0", "stop", "play", "time 500"));
    EXPECT_FALSE(player_->Start(LSoundSource()));
    EXPECT_EQ(listener_.log.back(), "stop");
    listener_.log.clear();
    player_->Play();
    player_->Cue();
    player_->Seek(5);
    player_->Stop();
    EXPECT_TRUE(listener_.log.empty()) << "nothing is loaded";
}

// Which frame of a numbered source stands there. The rate converter gives each of its phases a
// level of its own, so many samples are asked.
double FrameAt(const std::vector<std::int16_t>& samples, std::size_t index, double ratio) {
    const auto from = samples.begin() + static_cast<std::ptrdiff_t>(index);
    return std::accumulate(from, from + 1000, 0.0) / 1000 - 499.5 / ratio;
}

// The card's buffer holds far more than the ear has had: what it still held is played again.
TEST_F(PlayerTest, PauseLosesNothingAndRepeatsABlockAtMost) {
    const struct {
        int rate;
        const char* card;
        double ratio;  // of the card's rate
        int block;     // in frames of the card
    } cases[] = {{8000, "", 1, 2000}, {22050, "rates 48000\nchannels 1\n", 48000 / 22050.0, 8192}};
    int card = 0;
    for (const auto& test : cases) {
        SCOPED_TRACE(test.rate);
        cards_.Insert(card, test.card);
        player_->SetDevice(LSoundPlayDevice(card));
        listener_.log.clear();
        player_->Start(NumberedSource(30000, test.rate));
        ASSERT_TRUE(RunUntil([&] { return player_->Position() >= 11000; }));
        player_->Cue();
        EXPECT_TRUE(player_->IsCued());
        const int position = player_->Position();
        const std::string time = "time " + std::to_string(player_->PositionTime().Milliseconds());
        const std::vector<std::string> log = listener_.log;
        EXPECT_THAT(std::vector(log.end() - 3, log.end()), ElementsAre("level -127", "cue", time));
        player_->Cue();
        EXPECT_EQ(listener_.log, log) << "it is cued";
        player_->Play();
        ASSERT_TRUE(RunUntilTold("stop"));
        const std::vector<std::int16_t> before = cards_.Played(card, 1);
        const std::vector<std::int16_t> after = cards_.Played(card, 2);
        ASSERT_GT(std::min(before.size(), after.size()), 2000u);
        const double first = FrameAt(after, 0, test.ratio);
        const double last = FrameAt(before, before.size() - 1000, test.ratio) + 1000 / test.ratio;
        EXPECT_NEAR(first, position, 3);
        EXPECT_LE(first, last + 3);
        EXPECT_GE(first, last - test.block / test.ratio - 3);
        EXPECT_NEAR(static_cast<double>(after.size()), (30000 - position) * test.ratio,
                    30000 * 0.003 * test.ratio);
        ++card;
    }
}

TEST_F(PlayerTest, SeeksInTheSourcesOwnTimeOnAnyCardAndSoundsEvenWhenCued) {
    cards_.Insert(0, "rates 48000\nchannels 2\nspeed 4\n");
    cards_.Insert(1, "speed 4\n");
    player_->Start(NumberedSource(32000));
    ASSERT_TRUE(RunUntil([&] { return player_->Position() >= 4000; }));
    player_->Seek(8000);
    EXPECT_EQ(listener_.log.back(), "time 500");
    ASSERT_TRUE(RunUntil([&] { return player_->Position() > 9000; }));
    EXPECT_NEAR(FrameAt(cards_.Received(0, 2), 0, 6), 8000, 8);
    // What was converted for one card is not converted again for the next.
    player_->SetDevice(LSoundPlayDevice(1));
    player_->Cue();
    player_->Seek(LSoundTime(1250));
    EXPECT_TRUE(player_->IsCued());
    EXPECT_EQ(player_->Length().Milliseconds(), 2000);
    ASSERT_TRUE(RunUntil([&] { return player_->Position() > 20000; }));
    player_->Play();
    ASSERT_TRUE(RunUntilTold("stop"));
    EXPECT_EQ(cards_.Played(1), NumbersFrom(20000, 32000)) << "Play lets it go on";
}

TEST_F(PlayerTest, SeekFromTheEndTellsNothingOfTheEnd) {
    cards_.Insert(0, "speed 20\n");
    player_->Start(NumberedSource(8000));
    while (cards_.Events(0).empty() || cards_.Events(0).back().name != "close")
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    listener_.log.clear();
    player_->Seek(4000);
    EXPECT_THAT(listener_.log, ElementsAre("time 250"));
    ASSERT_TRUE(RunUntilTold("stop"));
    EXPECT_EQ(std::count(listener_.log.begin(), listener_.log.end(), "time 500"), 1);
    EXPECT_EQ(cards_.Played(0, 2), NumbersFrom(4000, 8000));
}

// Every operation of every listener's call, down to the player's end.
TEST_F(PlayerTest, ListenersMayDoAnythingFromWithin) {
    const std::function<void()> actions[] = {[&] { player_.reset(); }, [&] { player_->Stop(); },
                                             [&] { player_->Seek(6000); },
                                             [&] { player_->Start(NumberedSource(4000)); },
                                             [&] {
                                                 player_->Cue();
                                                 player_->Play();
                                             }};
    for (const std::string entry : {"play", "time", "level", "level -127", "cue", "stop"}) {
        for (const auto& action : actions) {
            player_ = std::make_unique<LSoundPlayer>(&listener_, 7, LSoundPlayDevice(0));
            int calls = 0;
            int stops = 0;
            bool isHeard = false;
            listener_.onEntry = [&](const std::string& told) {
                isHeard = isHeard || told.starts_with("level");
                stops += told == "stop" ? 1 : 0;
                if (told.starts_with(entry) && ++calls == 1)
                    action();
            };
            cards_.Insert(0, "speed 20\nfault stall 100\n");
            player_->Start(NumberedSource(8000));
            RunUntil([&] { return !player_ || !player_->IsLoaded() || isHeard; });
            if (player_)
                player_->Cue();
            cards_.Insert(0, "speed 20\n");
            if (player_)
                player_->Play();
            if (player_ && entry == "stop")
                player_->Start(NumberedSource(4000));
            EXPECT_TRUE(RunUntil([&] { return !player_ || !player_->IsLoaded(); }));
            EXPECT_GT(calls, 0) << entry;
            EXPECT_GT(stops, 0) << entry;
        }
    }
    listener_.onEntry = nullptr;
}

TEST_F(PlayerTest, NoOperationWaitsForACardThatDoesNotAnswer) {
    constexpr std::chrono::milliseconds kMost{20};
    const std::function<void()> operations[] = {
        [&] { player_->Cue(); }, [&] { player_->Seek(100); }, [&] { player_->Stop(); },
        [&] { player_->Start(NumberedSource(100)); }, [&] { player_.reset(); }};
    int card = 0;
    const auto wait = [&](const std::string& fault, const std::function<void()>& operation) {
        player_ = std::make_unique<LSoundPlayer>(&listener_, 7, LSoundPlayDevice(card));
        cards_.Insert(card, "speed 8\nfault " + fault + "\n");
        player_->Start(NumberedSource(32000));
        EXPECT_TRUE(RunUntil([&] { return cards_.Received(card).size() >= 4000; }));
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        const auto start = std::chrono::steady_clock::now();
        operation();
        const auto waited = std::chrono::steady_clock::now() - start;
        const bool isGoingOn = player_ && player_->IsLoaded();
        const std::size_t told = listener_.log.size();
        cards_.Insert(card, "speed 8\n");
        EXPECT_TRUE(RunUntil([&] {
            const std::vector<CardEvent> events = cards_.Events(card);
            return events.back().name == "close";
        })) << "the card is let go";
        EXPECT_TRUE(isGoingOn || listener_.log.size() == told) << "late news are not told";
        ++card;
        return waited;
    };
    for (const std::string fault : {"stall 4000", "hang 4000"}) {
        for (const auto& operation : operations) {
            // A busy machine may hold one up, but not every time.
            bool inTime = false;
            for (int tries = 0; tries < 20 && !inTime; ++tries)
                inTime = wait(fault, operation) <= kMost;
            EXPECT_TRUE(inTime) << fault;
        }
    }
}

// Frames of one stream, in order, of which at most one block came twice.
int CountRepeated(const std::vector<std::int16_t>& played, int frames) {
    int repeated = 0;
    int next = 0;
    for (const std::int16_t number : played) {
        EXPECT_LE(number, next) << "nothing is skipped";
        repeated += number < next ? 1 : 0;
        next = std::max<int>(next, number + 1);
    }
    EXPECT_EQ(next, frames);
    return repeated;
}

TEST_F(PlayerTest, StallsOfTheCardCostNoWord) {
    int card = 0;
    for (const std::string fault :
         {"underrun 10000", "underrun 22000", "suspend 10000", "suspend 22000",
          "again 10000\nfault again 10001\nfault again 10002\nfault again 10003"}) {
        SCOPED_TRACE(fault);
        cards_.Insert(card, "speed 2\nfault " + fault + "\n");
        listener_.log.clear();
        player_->SetDevice(LSoundPlayDevice(card));
        player_->Start(NumberedSource(30000));
        ASSERT_TRUE(RunUntilTold("stop"));
        // Of the block being heard, and of what a busy machine let pass unseen.
        EXPECT_LE(CountRepeated(cards_.Played(card), 30000), fault[0] == 'u' ? 8000 : 0);
        ++card;
    }
}

TEST(CardClock, TakesNoPaceFromTwoStepsOfACard) {
    using std::chrono::milliseconds;
    const CardClock::Time start;
    CardClock clock;
    clock.Begin(16000, start);
    clock.Wrote(12000, start);
    clock.NoteDelay(11900, start + milliseconds(1));
    clock.NoteDelay(11899, start + milliseconds(2));
    EXPECT_TRUE(clock.HadRunDry(start + milliseconds(800))) << "nothing is played twice";
}

TEST_F(PlayerTest, GrowingSourcesAreWaitedForInSilence) {
    int card = 0;
    for (const auto& [available, portion] : {std::pair{0, 5000}, {3000, 100}, {30000, 1}}) {
        cards_.Insert(card, "speed 8\n");
        auto* const memory = new MemorySource(Numbered(30000), 16000);
        memory->SetStreaming(available, portion);
        listener_.log.clear();
        player_->SetDevice(LSoundPlayDevice(card));
        player_->Start(LSoundSource(memory));
        ASSERT_TRUE(RunUntilTold("stop"));
        EXPECT_EQ(cards_.Played(card), NumbersFrom(0, 30000));
        EXPECT_EQ(*(listener_.log.end() - 2), "time 1875");
        ++card;
    }
}

TEST_F(PlayerTest, ABusyCardIsTriedAgain) {
    cards_.Insert(0, "fault busy\n");
    std::vector<PlayRoute::Way> ways;
    player_->SetRouteHandler([&](const PlayRoute& route) {
        EXPECT_EQ(route.isBusy, ways.empty());
        ways.push_back(route.way);
        cards_.Insert(0, "speed 8\n");
    });
    player_->Start(NumberedSource(8000));
    ASSERT_TRUE(RunUntilTold("stop"));
    EXPECT_THAT(ways, ElementsAre(PlayRoute::Way::kAwaited, PlayRoute::Way::kAsked));
    EXPECT_EQ(cards_.Played(0), NumbersFrom(0, 8000));
}

TEST_F(PlayerTest, EndsInTroubleWithAReason) {
    const struct {
        const char* card;
        PlayTrouble trouble;
        bool isEnd;
    } cases[] = {{"fault busy\n", PlayTrouble::kCannotOpen, true},
                 {"speed 8\nfault vanish 31900\n", PlayTrouble::kDeviceLost, false},
                 {"speed 8\nfault stall 20000\n", PlayTrouble::kDeviceLost, false},
                 {"speed 8\nfault break 8000\n", PlayTrouble::kDeviceLost, false},
                 {"channels 0\n", PlayTrouble::kCannotSetUp, false}};
    int card = 0;
    const std::clock_t worked = std::clock();
    PlayTrouble told = PlayTrouble::kNone;
    player_->SetTroubleHandler([&](PlayTrouble trouble) {
        EXPECT_FALSE(listener_.Has("stop"));
        told = trouble;
        player_->Stop();
    });
    for (const auto& test : cases) {
        cards_.Insert(card, test.card);
        listener_.log.clear();
        told = PlayTrouble::kNone;
        player_->SetDevice(LSoundPlayDevice(card++));
        EXPECT_TRUE(player_->Start(NumberedSource(32000)));
        ASSERT_TRUE(RunUntilTold("stop"));
        EXPECT_EQ(player_->Trouble(), test.trouble);
        EXPECT_EQ(told, test.isEnd ? PlayTrouble::kNone : test.trouble);
        EXPECT_EQ(*(listener_.log.end() - 2) == "time 2000", test.isEnd);
    }
    EXPECT_LT(std::clock() - worked, 2 * CLOCKS_PER_SEC) << "nobody asks without a pause";
}

// Tones and steps through everything between a source and a card of other channels and rates.
TEST_F(PlayerTest, FitsTheSoundToWhatTheCardGrants) {
    const auto tone = [](int frames, double amplitude, std::size_t channels = 1) {
        std::vector<int> samples;
        for (int i = 0; i < frames; ++i) {
            const double value = amplitude * std::sin(2 * std::numbers::pi * 0.02 * i);
            samples.insert(samples.end(), channels, static_cast<int>(value));
        }
        return samples;
    };
    // Long steps at full scale: the rate converter overshoots at each.
    std::vector<int> steps(11025);
    for (int i = 0; i < 11025; ++i)
        steps[static_cast<std::size_t>(i)] = i / 441 % 2 == 0 ? kMaxPcm16Peak : -kMaxPcm16Peak;
    const struct {
        const char* card;
        std::vector<int> samples;
        int rate;
        unsigned char sourceChannels;
        int sourcePeak;
        std::size_t channels, frames;
        int crossings, peak;
    } cases[] = {
        {"rates 48000\nchannels 2\n", tone(22050, 160000), 22050, 1, kMaxPcm16Peak, 2, 48000, 882,
         10000},
        {"channels 6\n", tone(16000, 160000), 16000, 1, kMaxPcm16Peak, 6, 16000, 640, 10000},
        {"channels 6\n", tone(16000, 160000, 2), 16000, 2, kMaxPcm16Peak, 6, 16000, 640, 10000},
        {"channels 1\n", tone(16000, 1000000), 16000, 1, 1048744, 1, 16000, 640, 32767},
        {"rates 48000\nchannels 1\n", steps, 22050, 1, kMaxPcm16Peak, 1, 24000, 24, 32767},
        {"rates 40\nspeed 100\n", tone(70, 160000), 40, 1, kMaxPcm16Peak, 1, 70, 2, 10000}};
    int card = 0;
    for (const auto& test : cases) {
        SCOPED_TRACE(test.card);
        cards_.Insert(card, std::string("speed 8\n") + test.card);
        player_->SetDevice(LSoundPlayDevice(card));
        listener_.log.clear();
        auto* const memory =
            new MemorySource(test.samples, test.rate, test.sourceChannels, test.sourcePeak);
        const LSoundSource keep(memory);
        player_->Start(keep);
        ASSERT_TRUE(RunUntilTold("stop"));
        const std::vector<std::int16_t> played = cards_.Played(card++);
        const std::size_t playedFrames = played.size() / test.channels;
        EXPECT_NEAR(static_cast<double>(playedFrames), static_cast<double>(test.frames),
                    static_cast<double>(test.frames) * 0.002);
        int crossings = 0;
        int peak = 0;
        for (std::size_t i = test.channels; i < played.size(); ++i) {
            const std::size_t channel = i % test.channels;
            const int jump = std::abs(played[i] - played[i - test.channels]);
            ASSERT_LT(jump, 60000) << "a step takes several frames; only wrapping jumps so";
            ASSERT_EQ(played[i], channel < 2 ? played[i - channel] : 0) << i;
            crossings += channel == 0 && (played[i - test.channels] < 0) != (played[i] < 0);
            peak = std::max(peak, std::abs(played[i]));
        }
        EXPECT_NEAR(crossings, test.crossings, 3);
        EXPECT_NEAR(peak, test.peak, 200);
        if (test.rate == 40) {
            EXPECT_THAT(memory->readSizes, ElementsAre(20, 20, 20, 10));
        }
    }
}

}  // namespace
