// Controls by number: the operations of each family, and the user's actions that become commands.
#include <gmock/gmock.h>

#include "foundation/settings/settings.h"
#include "gui/display_text.h"
#include "gui/windows/inter_win_message.h"
#include "tests/gui/gui_fixtures.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

enum : int { kEntry = 10, kEdit = 20, kList = 30, kCombo = 40, kSpin = 50, kBar = 60 };
enum : int { kProgress = 70, kButton, kCheck, kRadio, kSecondRadio, kTabs, kCool, kBox };

void GenerateAll(LDialogGenContext& context) {
    context.AddInput(kEntry, "Name:");
    context.AddEdit(kEdit, "");
    context.AddPullDownList(kList, "Rate:");
    context.AddComboBox(kCombo, "Voice:");
    context.AddInputUpDown(kSpin, "Count:");
    context.AddScrollBar(kBar, "Position:");
    context.AddProgressBar(kProgress);
    context.AddButton(kButton, "Press");
    context.AddCheckBox(kCheck, "Check");
    context.AddRadioButtonGroup(kRadio, "First");
    context.AddRadioButton(kSecondRadio, "Second");
    context.AddSpanFull(gtk_notebook_new(), kTabs);
    context.AddSpanFull(gtk_toggle_button_new(), kCool);
    context.AddSpanFull(gtk_event_box_new(), kBox);
}

class WindowControls : public testing::Test {
protected:
    void SetUp() override {
        dialog.Show(GenerateAll);
        PumpPending();
        dialog.enableCalls = 0;
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

// GTK complaints are fatal here, so this also shows that no null widget reaches GTK.
TEST_F(WindowControls, UnknownIdsAndOtherFamiliesAndClosedWindowsAreHarmless) {
    const auto useEverything = [this](int id) {
        char out[kTextBufferSize] = "x";
        dialog.SetText(id, "a");
        dialog.GetText(id, out);
        EXPECT_STREQ(out, "");
        dialog.SetEditText(id, "a");
        EXPECT_EQ(dialog.GetEditText(id), "");
        dialog.EditTextPaste(id);
        dialog.PDLInit(id);
        dialog.PDLAddString(id, "a");
        EXPECT_EQ(dialog.PDLGetCurSel(id), -1);
        dialog.SetCheck(id, true);
        EXPECT_FALSE(dialog.GetCheck(id));
        dialog.TABInsertTab(id, 0, "a");
        dialog.SBSetRange(id, 0, 9, 1);
        dialog.UDInit(id, 0, 9, 3);
        dialog.PBSetProgress(id, 0.5);
        dialog.CoolButtonInit(id, 1, "a");
        dialog.SetCoolButtonDown(id);
        dialog.HandleClick(id);
        dialog.HandleEditTextChange(id);
        dialog.HandlePDLSelChange(id);
        dialog.HandleLVSelChange(id);
        dialog.HandleTABSelChange(id);
        dialog.HandleHSBChange(id);
    };
    useEverything(12345);
    useEverything(kEntry + 1);  // a label
    dialog.SetStaticText(12345, "a");
    dialog.Close(0);
    useEverything(kEntry);
}

TEST_F(WindowControls, EntryTextIsCutAndTrimmed) {
    dialog.SetText(kEntry, "  a\tb \t ");
    char trimmed[kTextBufferSize];
    dialog.GetTextAndTrim(kEntry, trimmed);
    EXPECT_STREQ(trimmed, "a\tb \t");  // spaces only
    dialog.SetText(kEntry, "   ");
    dialog.GetTextAndTrim(kEntry, trimmed);
    EXPECT_STREQ(trimmed, "");

    dialog.SetText(kEntry, std::string(400, 'x').c_str());
    char full[kTextBufferSize];
    dialog.GetText(kEntry, full);
    EXPECT_EQ(std::string(full).size(), 259u);
    EXPECT_EQ(dialog.GetTextLength(kEntry), 400);
    char four[5] = "....";
    dialog.GetText(kEntry, four, 4);
    EXPECT_EQ(std::string(four, 5), std::string("xxxx\0", 5));  // byte 5 is not written

    dialog.SetInt(kEntry, -42);
    EXPECT_EQ(dialog.GetInt(kEntry), -42);
    dialog.SetText(kEntry, "many");
    EXPECT_EQ(dialog.GetInt(kEntry), 0);
    dialog.SetText(kEntry, "4295011296");  // no wrapping into another number
    EXPECT_EQ(dialog.GetInt(kEntry), 2147483647);
    dialog.SetTextEditable(kEntry, false);
    EXPECT_FALSE(dialog.IsTextEditable(kEntry));
    dialog.SetPasswordText(kEntry, " secret ");
    EXPECT_FALSE(gtk_entry_get_visibility(GTK_ENTRY(dialog.GetControlByID(kEntry))));
    dialog.GetPasswordTextAndTrim(kEntry, trimmed);
    EXPECT_STREQ(trimmed, "secret");
}

TEST_F(WindowControls, EditKeepsAnyBytesAndReplacesTheSelection) {
    const struct {
        std::string bytes, shown;
    } cases[] = {
        {"café — ok", "café — ok"},
        {"caf\xE9!", "café!"},                     // ISO-8859-1
        {std::string("a\0b", 3), "a\uFFFDb"},      // NUL is not the end
        {"cut \xE2\x80", "cut \xC3\xA2\xC2\x80"},  // unfinished sequence
    };
    for (const auto& c : cases) {
        EXPECT_EQ(DisplayText(c.bytes), c.shown);
        dialog.SetEditText(kEdit, LStringLongTemplate<char>(c.bytes));
        LStringLongTemplate<char> got;
        dialog.GetEditText(kEdit, got);
        EXPECT_EQ(got.View(), c.shown);
    }
    dialog.SetEditText(kEdit, "café noir");
    EXPECT_EQ(dialog.GetEditTextLength(kEdit), 9);
    dialog.SetEditTextSelection(kEdit, 0, 4);
    dialog.EditTextInsert(kEdit, "vin");
    EXPECT_EQ(dialog.GetEditText(kEdit), "vin noir");
    dialog.SetEditTextSelectionAll(kEdit);
    dialog.EditTextCut(kEdit);
    EXPECT_EQ(dialog.GetEditTextLength(kEdit), 0);
    dialog.EditTextPaste(kEdit);
    EXPECT_TRUE(PumpUntil([this] { return dialog.GetEditText(kEdit) == "vin noir"; }));
}

TEST_F(WindowControls, DropDownListSelectsByIndexTextAndNumber) {
    const char* const rates[] = {"6000", "8000", "44100", nullptr};
    dialog.PDLFill(kList, rates);
    EXPECT_EQ(dialog.PDLGetCount(kList), 3);
    EXPECT_EQ(dialog.PDLGetCurSel(kList), -1);
    dialog.PDLSetInt(kList, 44100);
    EXPECT_EQ(dialog.PDLGetCurSel(kList), 2);
    EXPECT_EQ(dialog.PDLGetInt(kList), 44100);
    dialog.PDLSetInt(kList, 44000);
    EXPECT_EQ(dialog.PDLGetCurSel(kList), -1);
    dialog.PDLSetText(kList, "8000");
    dialog.PDLDeleteItem(kList, 0);
    EXPECT_EQ(dialog.PDLGetText(kList), "8000");
    EXPECT_EQ(dialog.PDLFindString(kList, "6000"), -1);
    dialog.PDLSetCurSel(kList, 99);
    dialog.PDLDeleteItem(kList, 99);
    EXPECT_EQ(dialog.PDLGetCount(kList), 2);
    dialog.PDLClear(kList);
    EXPECT_EQ(dialog.PDLGetCount(kList), 0);

    dialog.PDLFill(kCombo, rates);
    dialog.PDLSetText(kCombo, "typed");  // a combo box takes what no item reads
    EXPECT_EQ(dialog.PDLGetText(kCombo), "typed");
    EXPECT_EQ(dialog.PDLGetCurSel(kCombo), -1);
    dialog.PDLSetCurSel(kCombo, 1);
    EXPECT_EQ(dialog.PDLGetText(kCombo), "8000");
}

TEST_F(WindowControls, DropDownListComesBackFromTheSettings) {
    const char* const items[] = {"one", "two = 2", "three", nullptr};
    dialog.PDLFill(kList, items);
    dialog.PDLSetCurSel(kList, 1);
    dialog.PDLAutoGet(kList, "GuiTestList");
    EXPECT_EQ(LUserSettingGet("GuiTestList", "Item 3"), "three");
    dialog.PDLAddString(kList, "four");
    dialog.PDLSetCurSel(kList, 3);
    dialog.PDLAutoFill(kList, "GuiTestList");
    EXPECT_EQ(dialog.PDLGetCount(kList), 3);
    EXPECT_EQ(dialog.PDLGetItem(kList, 1), "two = 2");
    EXPECT_EQ(dialog.PDLGetCurSel(kList), 1);

    LUserSettingSetString("GuiTestList", "Count", "2000000000");
    dialog.PDLAutoFill(kList, "GuiTestList");  // a foreign count must not fill the memory
    ASSERT_EQ(dialog.PDLGetCount(kList), 1000);
    dialog.PDLAddString(kList, "one too many");
    dialog.PDLAutoGet(kList, "GuiTestList");
    EXPECT_EQ(LUserSettingGet("GuiTestList", "Count"), "1000");
    EXPECT_EQ(LUserSettingGet("GuiTestList", "Item 1001"), "");
    dialog.PDLAutoFill(kList, "GuiTestEmpty");
    EXPECT_EQ(dialog.PDLGetCount(kList), 0);
}

TEST_F(WindowControls, RangesKeepWithinTheirLimits) {
    dialog.UDInit(kSpin, 1, 9, 5);
    dialog.UDSetInt(kSpin, 12);
    EXPECT_EQ(dialog.UDGetInt(kSpin), 9);
    dialog.SetText(kSpin, "3");  // typed, focus still inside
    EXPECT_EQ(dialog.UDGetInt(kSpin), 3);
    dialog.SBSetRange(kBar, 10, 20, 5);
    dialog.SBSetPos(kBar, 99);
    EXPECT_EQ(dialog.SBGetPos(kBar), 20);
    dialog.PBSetProgress(kProgress, 7.0);
    GtkWidget* bar = dialog.GetControlByID(kProgress);
    EXPECT_EQ(gtk_progress_bar_get_fraction(GTK_PROGRESS_BAR(bar)), 1.0);
}

TEST_F(WindowControls, ButtonsAndCheckBoxes) {
    gtk_button_clicked(ButtonOf(dialog, kButton));
    EXPECT_THAT(Taken(), ElementsAre(kButton));
    gtk_button_clicked(ButtonOf(dialog, kCheck));
    EXPECT_THAT(Taken(), ElementsAre(kCheck));
    EXPECT_TRUE(dialog.GetCheck(kCheck));
    dialog.SetCheck(kCheck, true);  // no change, no command
    EXPECT_THAT(Taken(), IsEmpty());
    gtk_button_clicked(ButtonOf(dialog, kSecondRadio));  // both buttons of the pair change
    EXPECT_THAT(Taken(), testing::UnorderedElementsAre(kRadio, kSecondRadio));
    EXPECT_FALSE(dialog.GetCheck(kRadio));
    // Registered under another command, the button answers to both numbers.
    dialog.SetButtonCommandHandler(GTK_WIDGET(ButtonOf(dialog, kButton)), 77);
    EXPECT_EQ(dialog.GetControlByID(77), dialog.GetControlByID(kButton));
    gtk_button_clicked(ButtonOf(dialog, 77));
    EXPECT_THAT(Taken(), ElementsAre(77));
}

TEST_F(WindowControls, EditChangesAndTheSizeLimit) {
    dialog.HandleEditTextChange(kEdit, 1111);
    dialog.SetEditText(kEdit, std::string(65537, 'x').c_str());
    EXPECT_THAT(Taken(), ElementsAre(1111));  // no maximum command registered
    dialog.HandleEditTextMax(kEdit, 2222);
    dialog.SetEditText(kEdit, "");
    Taken();
    dialog.SetEditText(kEdit, std::string(65536, 'x').c_str());
    EXPECT_THAT(Taken(), ElementsAre(1111));
    dialog.EditTextInsert(kEdit, "x");
    EXPECT_THAT(Taken(), ElementsAre(2222));
}

TEST_F(WindowControls, ListsTabsAndBars) {
    dialog.PDLAddString(kList, "a");
    dialog.HandlePDLSelChange(kList);
    dialog.PDLSetCurSel(kList, 0);
    EXPECT_THAT(Taken(), ElementsAre(kList));

    dialog.HandleHSBChange(kBar);
    dialog.SBSetRange(kBar, 0, 100, 10);
    gboolean handled = FALSE;
    g_signal_emit_by_name(dialog.GetControlByID(kBar), "change-value", GTK_SCROLL_JUMP, 41.6,
                          &handled);
    EXPECT_TRUE(handled);
    EXPECT_EQ(dialog.SBGetPos(kBar), 42);  // set before the command goes out
    EXPECT_THAT(Taken(), ElementsAre(kBar));
    dialog.SBSetPos(kBar, 7);
    EXPECT_THAT(Taken(), testing::IsEmpty());
    gtk_range_set_value(GTK_RANGE(dialog.GetControlByID(kBar)), 8);  // as assistive programs do
    EXPECT_THAT(Taken(), ElementsAre(kBar));

    dialog.TABInit(kTabs);
    dialog.TABInsertTab(kTabs, 0, "One");
    dialog.TABInsertTab(kTabs, 1, "Two");
    dialog.HandleTABSelChange(kTabs, 120);
    dialog.TABSetCurSel(kTabs, 1);
    EXPECT_THAT(Taken(), ElementsAre(120));
    for (int layouts = 0; layouts < 2; ++layouts)
        SendEvent(dialog.Widget(), GDK_CONFIGURE, [](GdkEvent&) {});
    EXPECT_THAT(Taken(), ElementsAre(120));
    char text[kTextBufferSize];
    dialog.TABGetText(kTabs, 1, text);
    EXPECT_STREQ(text, "Two");
    EXPECT_GT(dialog.TABGetTabHeight(kTabs), 5);
}

TEST_F(WindowControls, ClicksByButtonAndCount) {
    dialog.HandleClick(kBox);
    dialog.HandleDoubleClick(kBox, 161);
    dialog.HandleRightClick(kBox, 162);
    EXPECT_TRUE(Press(kBox, 1, GDK_BUTTON_PRESS));
    EXPECT_TRUE(Press(kBox, 1, GDK_2BUTTON_PRESS));
    EXPECT_FALSE(Press(kBox, 2, GDK_BUTTON_PRESS));  // nothing stored for the middle button
    EXPECT_TRUE(Press(kBox, 3, GDK_BUTTON_PRESS));
    EXPECT_THAT(Taken(), ElementsAre(kBox, 161, 162));
}

TEST_F(WindowControls, CoolButtonsSendOnClicksOnly) {
    dialog.CoolButtonInit(kCool, -1, "Read Aloud");
    gtk_button_clicked(ButtonOf(dialog, kCool));
    EXPECT_FALSE(dialog.IsCoolButtonDown(kCool));
    dialog.SetCoolButtonDown(kCool);
    gtk_button_clicked(ButtonOf(dialog, kCool));
    EXPECT_TRUE(dialog.IsCoolButtonDown(kCool));
    dialog.SetCoolButtonUp(kCool);
    EXPECT_FALSE(dialog.IsCoolButtonDown(kCool));
    EXPECT_THAT(Taken(), ElementsAre(kCool, kCool));
}

TEST_F(WindowControls, MessagesBetweenWindows) {
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

TEST_F(WindowControls, TheKeyboardGoesOnFromADisabledOrHiddenControlAndBack) {
    const auto focus = [this] { return gtk_window_get_focus(GTK_WINDOW(dialog.Widget())); };
    for (const auto set : {&LWindow::EnableControl, &LWindow::ShowControl}) {
        dialog.FocusControl(kButton);
        (dialog.*set)(kButton, false);
        GtkWidget* const next = focus();
        ASSERT_NE(next, nullptr);
        EXPECT_NE(next, dialog.GetControlByID(kButton));
        (dialog.*set)(kButton, true);
        EXPECT_EQ(focus(), dialog.GetControlByID(kButton));
    }
    // The user who went elsewhere stays there.
    dialog.EnableControl(kButton, false);
    dialog.FocusControl(kCool);
    dialog.EnableControl(kButton, true);
    EXPECT_EQ(focus(), dialog.GetControlByID(kCool));
    // What was hidden gets its place, by which the controls are in order.
    ASSERT_TRUE(PumpUntil([&] {
        dialog.FocusControl(kButton);
        gtk_widget_child_focus(dialog.Widget(), GTK_DIR_TAB_FORWARD);
        return focus() == dialog.GetControlByID(kCheck);
    }));
    // So does who has typed where the keyboard went meanwhile, but not who has only pressed it.
    for (const auto& [control, key, returns] : {std::tuple(int{kEntry}, GDK_KEY_a, false),
                                                std::tuple(int{kEntry}, GDK_KEY_Control_L, true),
                                                std::tuple(int{kButton}, GDK_KEY_F3, true)}) {
        dialog.FocusControl(control);
        GtkWidget* const before = focus();
        dialog.EnableControl(control, false);
        SendKey(dialog.Widget(), GDK_KEY_PRESS, static_cast<guint>(key));
        dialog.EnableControl(control, true);
        EXPECT_EQ(focus() == before, returns) << control << " " << key;
    }
}

}  // namespace
