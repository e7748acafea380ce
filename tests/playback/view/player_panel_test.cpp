// The real panel on a virtual card: what its keys and buttons let the user hear.
#include "playback/player_panel.h"

#include <gdk/gdkkeysyms.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <numeric>

#include "foundation/settings.h"
#include "playback/player_panel_ids.h"
#include "tests/support/memory_sound.h"
#include "tests/support/virtual_card.h"
#include "tests/support/window/main_loop.h"

namespace {

using namespace PlayerPanel;

constexpr int kRate = 4000;
constexpr int kMost = 20000;

// Each frame tells its number, sentences begin at each whole second.
class NumberedInfo : public LPlayerBaseInfo {
public:
    explicit NumberedInfo(int seconds) : seconds_(seconds) {}
    void OpenSource(LSoundSource& source) override {
        std::vector<int> samples(static_cast<std::size_t>(seconds_) * kRate);
        std::iota(samples.begin(), samples.end(), 1);
        for (int& sample : samples)
            sample *= 16;
        source = LSoundSource(new MemorySource(std::move(samples), kRate));
    }
    std::string VoiceName() const override { return "numbers"; }
    std::optional<LSoundTime> FindSentence(LSoundTime time, int step) const override {
        const int second = std::clamp(time.Milliseconds() / 1000 + step, 0, seconds_);
        return LSoundTime(second * 1000);
    }

private:
    int seconds_;
};

class PlayerPanelTest : public testing::Test {
protected:
    void Open(int seconds, const char* card = "speed 4\n") {
        cards_.Insert(0, card);
        info_ = std::make_unique<NumberedInfo>(seconds);
        panel_ = std::make_unique<LPlayerBaseDlg>(*info_);
        ASSERT_TRUE(panel_->Open(nullptr, {"Player", false, DlgGenPlayer}, false));
        panel_->EnableControls();
    }
    void Close() {
        panel_->Close(kCommandCancel);
        panel_.reset();
    }
    void Press(LKeyCode key) { EXPECT_TRUE(panel_->EvKeyDown(key)); }
    bool PastTime(int milliseconds) {
        return PumpUntil([&] { return panel_->Time() >= LSoundTime(milliseconds); }, kMost);
    }
    bool Ended() {
        return PumpUntil([&] { return !panel_->IsPlaying(); }, kMost);
    }
    std::string TimeText() const {
        return gtk_label_get_text(GTK_LABEL(panel_->GetControlByID(kTime)));
    }

    VirtualCards cards_;
    std::unique_ptr<NumberedInfo> info_;
    std::unique_ptr<LPlayerBaseDlg> panel_;
};

TEST_F(PlayerPanelTest, PauseGoesOnWhereItWasAndEndBeginsAgain) {
    Open(4);
    panel_->DeliverCommand(kPlay);
    ASSERT_TRUE(PastTime(1000));
    Press(GDK_space);
    EXPECT_FALSE(panel_->IsPlaying());
    Press(GDK_F10);
    ASSERT_TRUE(Ended());
    EXPECT_EQ(panel_->Time(), LSoundTime());
    ASSERT_EQ(cards_.Streams(0), 2);
    EXPECT_GT(cards_.Received(0, 2)[0], kRate / 2) << "it goes on where it was";
    Close();
}

TEST_F(PlayerPanelTest, PositionsAreWhereTheUserPutThem) {
    Open(7);
    struct Row {
        std::function<void()> act;
        int frame;  // heard from there on
        const char* time;
    };
    const Row rows[] = {
        {[&] {
             panel_->SBSetPos(kPosition, 50);
             panel_->DeliverCommand(kPositionMoved);
         },
         7 * kRate / 2, "0:00:03.50 of 0:00:07"},
        {[&] { Press(GDK_Home); }, 0, "0:00:00.00 of 0:00:07"},
        {[&] {
             panel_->SBSetPos(kPosition, 30);
             panel_->DeliverCommand(kPositionMoved);
             Press(kKeyControl | GDK_Right);
         },
         3 * kRate, "0:00:03.00 of 0:00:07"},
        {[&] { Press(kKeyControl | GDK_Left); }, 2 * kRate, "0:00:02.00 of 0:00:07"},
        {[&] { Press(kKeyAlt | GDK_F9); }, 4 * kRate, ""},
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
    Close();
}

TEST_F(PlayerPanelTest, WindingReachesBothEndsAndReleaseGoesOn) {
    Open(7);
    panel_->SBSetPos(kPosition, 40);
    panel_->DeliverCommand(kPositionMoved);
    Press(GDK_F9);
    ASSERT_TRUE(PastTime(3000));
    Press(GDK_Left);
    Press(GDK_Left);  // the key's own repeat
    ASSERT_TRUE(PumpUntil([&] { return panel_->Time() <= LSoundTime(300); }, kMost));
    panel_->EvKeyUp(GDK_Left);
    ASSERT_TRUE(
        PumpUntil([&] { return panel_->IsPlaying() && panel_->Time() > LSoundTime(500); }, kMost));
    panel_->DeliverCommand(kForwardDown);
    ASSERT_TRUE(PumpUntil([&] { return !panel_->IsPlaying(); }, kMost));
    EXPECT_GT(panel_->Time(), LSoundTime(6900));
    panel_->DeliverCommand(kForwardUp);
    ASSERT_TRUE(Ended());
    Close();
}

TEST_F(PlayerPanelTest, SpeedHalvesTheTimeAndIsKeptWithTheVoice) {
    LUserSettingSetString("PlayerTempo", "numbers", "100");
    Open(4, "rates 48000\nspeed 4\n");
    for (int presses = 0; presses < 10; ++presses)
        Press(kKeyControl | GDK_Up);
    Press(GDK_F9);
    ASSERT_TRUE(PastTime(3000));
    panel_->SBSetPos(kPosition, 50);
    panel_->DeliverCommand(kPositionMoved);
    ASSERT_TRUE(Ended());
    EXPECT_NEAR(static_cast<double>(cards_.Played(0, 2).size()), 48000, 3000);
    Close();
    EXPECT_EQ(LUserSettingGet("PlayerTempo", "numbers"), "200");
    LUserSettingSetString("PlayerTempo", "numbers", "100");
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
    Close();
}

}  // namespace
