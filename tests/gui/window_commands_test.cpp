// User actions become commands, each followed by EnableControls.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gui/inter_win_message.h"
#include "gui/key_dialog.h"
#include "tests/gui/gui_fixtures.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void Generate(LDialogGenContext& context) {
    context.AddButton(1, "Press");
    context.AddCheckBox(2, "Check");
    context.AddEdit(4, "");
    context.AddPullDownList(6, "List");
    context.AddScrollBar(8, "Bar");
    context.AddList(10, 50);
    context.AddSpanFull(gtk_notebook_new(), 12);
    context.AddSpanFull(gtk_toggle_button_new(), 14);
    context.AddSpanFull(gtk_event_box_new(), 16);
    context.AddRadioButtonGroup(18, "First");
    context.AddRadioButton(19, "Second");
}

class WindowCommands : public testing::Test {
protected:
    void SetUp() override {
        dialog.Show(Generate);
        PumpPending();
    }
    // The commands since the last call; each must have been followed by EnableControls.
    std::vector<int> Taken() {
        EXPECT_EQ(dialog.enableCalls, static_cast<int>(dialog.commands.size()));
        dialog.enableCalls = 0;
        return std::exchange(dialog.commands, {});
    }
    bool Press(int id, guint button, GdkEventType type) {
        return SendEvent(dialog.GetControlByID(id), type,
                         [button](GdkEvent& event) { event.button.button = button; });
    }
    RecordingDialog dialog;
};

TEST_F(WindowCommands, ButtonsAndCheckBoxes) {
    gtk_button_clicked(ButtonOf(dialog, 1));
    EXPECT_THAT(Taken(), ElementsAre(1));
    gtk_button_clicked(ButtonOf(dialog, 2));
    EXPECT_THAT(Taken(), ElementsAre(2));
    EXPECT_TRUE(dialog.GetCheck(2));
    dialog.SetCheck(2, true);  // no change, no command
    EXPECT_THAT(Taken(), IsEmpty());
    gtk_button_clicked(ButtonOf(dialog, 19));  // both buttons of the pair change
    EXPECT_THAT(Taken(), testing::UnorderedElementsAre(18, 19));
    EXPECT_FALSE(dialog.GetCheck(18));
    // Registered under another command, the button answers to both numbers.
    dialog.SetButtonCommandHandler(GTK_WIDGET(ButtonOf(dialog, 1)), 77);
    EXPECT_EQ(dialog.GetControlByID(77), dialog.GetControlByID(1));
    gtk_button_clicked(ButtonOf(dialog, 77));
    EXPECT_THAT(Taken(), ElementsAre(77));
}

TEST_F(WindowCommands, EditChangesAndTheSizeLimit) {
    dialog.HandleEditTextChange(4, 1111);
    dialog.SetEditText(4, std::string(65537, 'x').c_str());
    EXPECT_THAT(Taken(), ElementsAre(1111));  // no maximum command registered
    dialog.HandleEditTextMax(4, 2222);
    dialog.SetEditText(4, "");
    Taken();
    dialog.SetEditText(4, std::string(65536, 'x').c_str());
    EXPECT_THAT(Taken(), ElementsAre(1111));
    dialog.EditTextInsert(4, "x");
    EXPECT_THAT(Taken(), ElementsAre(2222));
}

TEST_F(WindowCommands, ListsTabsAndBars) {
    dialog.PDLAddString(6, "a");
    dialog.HandlePDLSelChange(6);
    dialog.PDLSetCurSel(6, 0);
    EXPECT_THAT(Taken(), ElementsAre(6));

    dialog.HandleHSBChange(8);
    dialog.SBSetRange(8, 0, 100, 10);
    gboolean handled = FALSE;
    g_signal_emit_by_name(dialog.GetControlByID(8), "change-value", GTK_SCROLL_JUMP, 41.6,
                          &handled);
    EXPECT_TRUE(handled);
    EXPECT_EQ(dialog.SBGetPos(8), 42);  // set before the command goes out
    EXPECT_THAT(Taken(), ElementsAre(8));

    dialog.TABInit(12);
    dialog.TABInsertTab(12, 0, "One");
    dialog.TABInsertTab(12, 1, "Two");
    dialog.HandleTABSelChange(12, 120);
    dialog.TABSetCurSel(12, 1);
    EXPECT_THAT(Taken(), ElementsAre(120));
    for (int layouts = 0; layouts < 2; ++layouts)
        SendEvent(dialog.Widget(), GDK_CONFIGURE, [](GdkEvent&) {});
    EXPECT_THAT(Taken(), ElementsAre(120));
    char text[kTextBufferSize];
    dialog.TABGetText(12, 1, text);
    EXPECT_STREQ(text, "Two");
    EXPECT_GT(dialog.TABGetTabHeight(12), 5);
}

TEST_F(WindowCommands, ClicksByButtonAndCount) {
    dialog.HandleClick(16);
    dialog.HandleDoubleClick(16, 161);
    dialog.HandleRightClick(16, 162);
    EXPECT_TRUE(Press(16, 1, GDK_BUTTON_PRESS));
    EXPECT_TRUE(Press(16, 1, GDK_2BUTTON_PRESS));
    EXPECT_FALSE(Press(16, 2, GDK_BUTTON_PRESS));  // nothing stored for the middle button
    EXPECT_TRUE(Press(16, 3, GDK_BUTTON_PRESS));
    EXPECT_THAT(Taken(), ElementsAre(16, 161, 162));
}

TEST_F(WindowCommands, CoolButtonsSendOnClicksOnly) {
    dialog.CoolButtonInit(14, -1, "Read Aloud");
    gtk_button_clicked(ButtonOf(dialog, 14));
    EXPECT_FALSE(dialog.IsCoolButtonDown(14));
    EXPECT_THAT(Taken(), ElementsAre(14));
    dialog.SetCoolButtonDown(14);
    EXPECT_TRUE(dialog.IsCoolButtonDown(14));
    gtk_button_clicked(ButtonOf(dialog, 14));
    EXPECT_TRUE(dialog.IsCoolButtonDown(14));
    dialog.SetCoolButtonUp(14);
    EXPECT_FALSE(dialog.IsCoolButtonDown(14));
    EXPECT_THAT(Taken(), ElementsAre(14));
}

TEST(KeyDialog, KeysFollowTheTableWhateverTheLocks) {
    static constexpr LKeyToCommandMap kMap[] = {{kKeyControl | kKeyShift | 'R', 1011},
                                                {kKeyControl | 'B', 1000}};
    Recorder<LKeyDialog> dialog;
    dialog.SetKeyMap(kMap);
    const struct {
        guint state, keyval;
        bool known;
    } cases[] = {
        {GDK_CONTROL_MASK | GDK_SHIFT_MASK, 'R', true},
        {GDK_CONTROL_MASK | GDK_LOCK_MASK | GDK_MOD2_MASK, 'b', true},  // Caps Lock and Num Lock
        {GDK_CONTROL_MASK, 'r', false},
        {0, 'b', false},
        {GDK_CONTROL_MASK | GDK_MOD1_MASK, 'b', false},
    };
    for (const auto& c : cases) {
        GdkEventKey event{};
        event.state = c.state;
        event.keyval = c.keyval;
        EXPECT_EQ(dialog.EvKeyDown(KeyCodeOfEvent(event)), c.known);
    }
    EXPECT_THAT(dialog.commands, ElementsAre(1011, 1000));
}

TEST(KeyDialog, PressesAndReleasesArriveByThemselves) {
    struct Keys : Recorder<LKeyDialog> {
        bool EvKeyDown(unsigned int key) override { return seen.push_back(key), true; }
        bool EvKeyUp(unsigned int key) override { return seen.push_back(key + 1), true; }
        std::vector<unsigned int> seen;
    } dialog;
    dialog.Show([](LDialogGenContext&) {});
    SendKey(dialog.Widget(), GDK_KEY_PRESS, 'a');
    SendKey(dialog.Widget(), GDK_KEY_RELEASE, 'a');
    EXPECT_THAT(dialog.seen, ElementsAre('A', 'B'));
    EXPECT_EQ(LKeyGetDescription(kKeyShift | kKeyControl | 'R'), "Ctrl+Shift+R");
    EXPECT_EQ(LKeyGetDescription(kKeyAlt | GDK_KEY_F5), "Alt+F5");
}

TEST_F(WindowCommands, MessagesBetweenWindows) {
    struct : LInterWinMessageHandler {
        void EvInterWinMessage(int first, int second, int third) override {
            got = {first, second, third};
        }
        std::vector<int> got;
    } recorder;
    recorder.HandleInterWinMessage(dialog.Widget(), 0);
    PostInterWinMessage(dialog.Widget(), 4, 5, 6);  // dropped
    SendInterWinMessage(dialog.Widget(), 1, -2, 3);
    SendInterWinMessage(nullptr, 7, 8, 9);
    EXPECT_TRUE(PumpUntil([&] { return !recorder.got.empty(); }));
    PumpPending();
    EXPECT_THAT(recorder.got, ElementsAre(1, -2, 3));
}

}  // namespace
