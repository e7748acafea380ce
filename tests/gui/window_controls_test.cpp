// Controls by number: the registry and the operations of each control family.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/settings.h"
#include "gui/display_text.h"
#include "tests/gui/gui_fixtures.h"

namespace {

enum : int { kEntry = 10, kEdit = 20, kList = 30, kCombo = 40, kSpin = 60, kBar = 70 };

void GenerateAll(LDialogGenContext& context) {
    context.AddInput(kEntry, "Name:");
    context.AddEdit(kEdit, "");
    context.AddPullDownList(kList, "Rate:");
    context.AddComboBox(kCombo, "Voice:");
    context.AddInputUpDown(kSpin, "Count:");
    context.AddScrollBar(kBar, "Position:");
    context.AddProgressBar(90);
}

class WindowControls : public testing::Test {
protected:
    void SetUp() override { dialog.Show(GenerateAll); }
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
    dialog.PBSetProgress(90, 7.0);
    GtkWidget* bar = dialog.GetControlByID(90);
    EXPECT_EQ(gtk_progress_bar_get_fraction(GTK_PROGRESS_BAR(bar)), 1.0);
}

}  // namespace
