// The window that tells what the machine lacks, while it looks anew.
#include "desktop/dialogs/ready_dialog.h"

#include <gtest/gtest.h>

#include "tests/gui/gui_fixtures.h"

namespace {

enum : int { kAgainButton = 105, kVoiceList = 107 };

class SlowMachine final : public LReadiness {
public:
    void Look(std::function<void()> changed) override {
        state_ = Engine::kAsking;
        changed_ = std::move(changed);
    }
    void Answer() {
        state_ = Engine::kSpeaks;
        changed_();
    }
    Engine EngineState() const override { return state_; }
    std::string Engines() const override { return "An engine"; }
    std::string Voices() const override { return "2 found"; }
    std::vector<std::string> Cards() const override { return {"A card"}; }
    std::vector<LHelperProgram> Helpers() const override { return {}; }
    void ReadTestSentence(GtkWidget*) override {}

private:
    Engine state_ = Engine::kAsking;
    std::function<void()> changed_;
};

TEST(ReadyDialog, ACheckLeavesTheUserWhereTheyAre) {
    SlowMachine machine;
    LReadyDialog dialog(machine);
    const auto focus = [&dialog] { return gtk_window_get_focus(GTK_WINDOW(dialog.Widget())); };
    const UserScript user({
        [&] { machine.Answer(); },
        [&] {
            dialog.LVSetCurSel(kVoiceList, 2);
            dialog.LVSetCheck(kVoiceList, 1, true);
            dialog.FocusControl(kAgainButton);
            gtk_button_clicked(ButtonOf(dialog, kAgainButton));
            EXPECT_FALSE(dialog.IsControlEnabled(kAgainButton));
            EXPECT_NE(focus(), nullptr);
            machine.Answer();
            EXPECT_EQ(focus(), dialog.GetControlByID(kAgainButton));
            EXPECT_EQ(dialog.LVGetFirstSel(kVoiceList), 2);
            EXPECT_TRUE(dialog.LVGetCheck(kVoiceList, 1));
            // With the package that it is mute without.
            EXPECT_NE(dialog.LVFindColumnString(kVoiceList, 2, "festvox-hi-nsk festival-hi"), -1);
        },
        [&] { PressEscape(dialog.Widget()); },
    });
    dialog.Run(nullptr);
    EXPECT_TRUE(user.IsDone());
}

}  // namespace
