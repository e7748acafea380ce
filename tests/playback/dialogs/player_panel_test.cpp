// The real panel on a virtual card: what its keys and buttons let the user hear.
#include "playback/dialogs/player_panel.h"

#include <gdk/gdkkeysyms.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/settings/settings.h"
#include "gui/widgets/ticking_text.h"
#include "playback/dialogs/player_panel_ids.h"
#include "tests/support/memory_sound.h"
#include "tests/support/virtual_card.h"
#include "tests/support/window/main_loop.h"

namespace {

using namespace PlayerPanel;

constexpr int kPanelRate = 4000;
constexpr int kMost = 20000;

int Number(int frame) {
    return (frame + 1) * 16;
}
int Tone(int frame) {  // 200 Hz
    return frame % 20 < 10 ? 80000 : -80000;
}

// Sentences begin at each whole second.
class MadeInfo : public LPlayerBaseInfo {
public:
    MadeInfo(int seconds, int (*sample)(int frame)) : seconds_(seconds), sample_(sample) {}
    void OpenSource(LSoundSource& source) override {
        std::vector<int> samples(static_cast<std::size_t>(seconds_ * kPanelRate));
        for (int frame = 0; int& sample : samples)
            sample = sample_(frame++);
        source = LSoundSource(new MemorySource(std::move(samples), kPanelRate));
    }
    std::string VoiceName() const override { return "numbers"; }
    std::optional<LSoundTime> FindSentence(LSoundTime time, int step) const override {
        const int second = std::clamp(time.Milliseconds() / 1000 + step, 0, seconds_);
        return LSoundTime(second * 1000);
    }

private:
    int seconds_;
    int (*sample_)(int frame);
};

class PlayerPanelTest : public testing::Test {
protected:
    // What another run has left is not this one's.
    void SetUp() override {
        LUserSettingSetString("PlayerTempo", "numbers", nullptr);
        LUserSettingSetString("Player", "Device", nullptr);
        LUserSettingSetString("Player", "VolumeDB", nullptr);
    }
    void Open(int seconds, const char* card = "speed 4\n", int (*sample)(int) = Number) {
        if (card != nullptr)
            cards_.Insert(0, card);
        info_ = std::make_unique<MadeInfo>(seconds, sample);
        transport_ = std::make_unique<LPlayerTransport>(*info_);
        panel_ = std::make_unique<LPlayerBaseDlg>(*transport_);
        ASSERT_TRUE(panel_->Open(nullptr, {"Player", false, DlgGenPlayer}, false));
        panel_->EnableControls();
    }
    void Close() {
        panel_->Close(kCommandCancel);
        panel_.reset();
        transport_.reset();
    }
    void TearDown() override {
        if (panel_)
            Close();
    }
    void Press(LKeyCode key) { EXPECT_TRUE(panel_->EvKeyDown(key)); }
    void MoveTo(int percent) {
        panel_->SBSetPos(kPosition, percent);
        panel_->DeliverCommand(kPositionMoved);
    }
    bool PastTime(int milliseconds) {
        return PumpUntil([&] { return panel_->Time() >= LSoundTime(milliseconds); }, kMost);
    }
    bool Ended() {
        return PumpUntil([&] { return !panel_->IsPlaying(); }, kMost);
    }
    std::string TimeText() const { return TickingTextOf(panel_->GetControlByID(kTime)); }

    VirtualCards cards_;
    std::unique_ptr<MadeInfo> info_;
    std::unique_ptr<LPlayerTransport> transport_;
    std::unique_ptr<LPlayerBaseDlg> panel_;
};

TEST_F(PlayerPanelTest, PausesGoesOnAndBeginsAgain) {
    Open(4);
    panel_->DeliverCommand(kPlay);
    ASSERT_TRUE(PastTime(1000));
    Press(GDK_space);
    EXPECT_FALSE(panel_->IsPlaying());
    Press(GDK_F10);
    ASSERT_TRUE(Ended());
    EXPECT_EQ(panel_->Time(), LSoundTime());
    ASSERT_EQ(cards_.Streams(0), 2);
    EXPECT_GT(cards_.Played(0, 2).front(), 1) << "it goes on";
    EXPECT_EQ(cards_.Played(0, 2).back(), 4 * kPanelRate);
}

TEST_F(PlayerPanelTest, PositionsAreWhereTheUserPutThem) {
    Open(7);
    struct Row {
        std::function<void()> act;
        int frame;  // heard from there on
        const char* time;
    };
    const Row rows[] = {
        {[&] { MoveTo(50); }, 7 * kPanelRate / 2, "0:00:03.50 of 0:00:07"},
        {[&] { Press(GDK_Home); }, 0, "0:00:00.00 of 0:00:07"},
        {[&] {
             MoveTo(30);
             Press(kKeyControl | GDK_Right);
         },
         3 * kPanelRate, "0:00:03.00 of 0:00:07"},
        {[&] { Press(kKeyControl | GDK_Left); }, 2 * kPanelRate, "0:00:02.00 of 0:00:07"},
        {[&] { Press(kKeyAlt | GDK_F9); }, 4 * kPanelRate, ""},
    };
    Press(GDK_F9);
    ASSERT_TRUE(PastTime(100));
    for (const Row& row : rows) {
        row.act();
        if (row.time[0] != '\0') {
            EXPECT_EQ(TimeText(), row.time);
        }
        EXPECT_TRUE(PumpUntil(
            [&] {
                const auto last = cards_.Received(0, cards_.Streams(0));
                return !last.empty() && last[0] == row.frame + 1;
            },
            kMost))
            << row.frame;
    }
    Press(GDK_Escape);
    EXPECT_FALSE(panel_->IsPlaying());
    Press(GDK_End);
    EXPECT_EQ(TimeText(), "0:00:07.00 of 0:00:07");
    EXPECT_FALSE(panel_->EvKeyDown(GDK_Escape)) << "closes";
}

// The speed that the card received, half a second and one and a half after the press; it changes
// with each block.
TEST_F(PlayerPanelTest, WindingBecomesFasterAndReachesBothEnds) {
    const struct {
        LKeyCode key;
        bool playing;
        int position;  // per cent
        double start, end;
    } cases[] = {{GDK_Right, true, 0, 1.5, 7.0},
                 {GDK_Right, false, 0, 0.1, 3.0},
                 {GDK_Left, true, 90, -0.5, -7.0},
                 {GDK_Left, false, 90, -0.1, -3.0}};
    Open(7);
    for (const auto& test : cases) {
        SCOPED_TRACE(test.start);
        MoveTo(test.position);
        Press(test.playing ? GDK_F9 : GDK_space);
        EXPECT_EQ(panel_->IsPlaying(), test.playing);
        const auto playing = cards_.Streams(0);
        Press(test.key);
        Press(test.key);  // the key's own repeat
        ASSERT_TRUE(PumpUntil(
            [&] {
                const auto newest = cards_.Streams(0);
                return newest > playing && cards_.Received(0, newest).size() > 2 * kPanelRate;
            },
            kMost));
        const std::vector<std::int16_t> wound = cards_.Received(0, cards_.Streams(0));
        for (const std::size_t at :
             {std::size_t{kPanelRate} / 2, 3 * std::size_t{kPanelRate} / 2}) {
            const double seconds = (static_cast<double>(at) + 50) / kPanelRate;
            EXPECT_NEAR((wound[at + 100] - wound[at]) / 100.0,
                        test.start + (test.end - test.start) * seconds / 8, 0.09);
        }
        ASSERT_TRUE(PumpUntil(
            [&] {
                return test.start < 0 ? panel_->Time() <= LSoundTime(300)
                                      : panel_->Time() > LSoundTime(6900);
            },
            kMost));
        panel_->EvKeyUp(test.key);
        if (test.start < 0) {
            EXPECT_EQ(panel_->IsPlaying(), test.playing) << "it goes on as before";
        }
        panel_->CmStop();
    }
}

TEST_F(PlayerPanelTest, SpeedHalvesTheTimeAtTheSamePitchAndIsKeptWithTheVoice) {
    Open(4, "rates 48000\nspeed 4\n", Tone);
    for (int presses = 0; presses < 10; ++presses)
        Press(kKeyAlt | GDK_Page_Up);
    Press(GDK_F9);
    ASSERT_TRUE(Ended());
    const std::vector<std::int16_t> played = cards_.Played(0);
    EXPECT_NEAR(static_cast<double>(played.size()), 2 * 48000, 3000);
    int crossings = 0;
    for (std::size_t i = 1; i < played.size(); ++i)
        crossings += (played[i - 1] < 0) != (played[i] < 0);
    EXPECT_NEAR(crossings * 48000.0 / static_cast<double>(played.size()), 400, 8);
    Close();
    EXPECT_EQ(LUserSettingGet("PlayerTempo", "numbers"), "200");
}

TEST_F(PlayerPanelTest, ListsTheCardsAndKeepsTheOneChosen) {
    const auto listed = [&] {
        std::string names;
        Open(1, nullptr);
        for (int item = 0; item < panel_->PDLGetCount(kDevice); ++item)
            names += panel_->PDLGetItem(kDevice, item) + ", ";
        Close();
        return names;
    };
    EXPECT_EQ(listed(), "Default Sound Device, The desktop's sound server, ");
    cards_.Insert(0, "name One\n");
    cards_.Insert(1, "name Two\n");
    EXPECT_EQ(listed(), "Default Sound Device, One, Two, The desktop's sound server, ");
    const struct {
        int entry;
        const char* kept;
        int shown;
    } choices[] = {{2, "Two", 2}, {3, "ALSA default", 3}, {0, "One", 1}};
    for (const auto& choice : choices) {
        Open(1, nullptr);
        panel_->PDLSetCurSel(kDevice, choice.entry);
        panel_->DeliverCommand(kDeviceChosen);
        Close();
        EXPECT_EQ(LUserSettingGet("Player", "Device"), choice.kept);
        Open(1, nullptr);
        EXPECT_EQ(panel_->PDLGetCurSel(kDevice), choice.shown);
        Close();
    }
    LUserSettingSetString("Player", "Device", "unplugged");
    Open(1, nullptr);
    Close();
    EXPECT_EQ(LUserSettingGet("Player", "Device"), "unplugged") << "it may come back";
}

TEST_F(PlayerPanelTest, SetsTheVolumeOfEveryElementButCapture) {
    LUserSettingSetString("Player", "VolumeDB", "0");
    Open(1, "name One\nelement Master 0 87\nelement Capture 0 31\n");
    EXPECT_EQ(cards_.Mixer(0), "Master 65 65\nCapture 31 31\n");
}

TEST_F(PlayerPanelTest, LosesNothingInAThousandRandomActs) {
    Open(2, "speed 50\n");
    const int commands[] = {
        kPlay,         kScrub,         kStop,        kStart,       kEnd,
        kRewindDown,   kRewindUp,      kForwardDown, kForwardUp,   kPreviousSentence,
        kNextSentence, kPositionMoved, kTempoMoved,  kDeviceChosen};
    unsigned int random = 1;
    for (int act = 0; act < 1000; ++act) {
        random = random * 1103515245U + 12345U;
        panel_->SBSetPos(kPosition, static_cast<int>(random >> 8) % 101);
        panel_->DeliverCommand(commands[(random >> 16) % std::size(commands)]);
        if (random >> 28 == 0)
            PumpPending();
    }
    panel_->CmStop();
    EXPECT_EQ(TimeText().substr(0, 10), "0:00:00.00");
}

}  // namespace
