// Building and running dialogs and property sheets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gui/bubble_tip.h"
#include "gui/message_box.h"
#include "gui/property_sheet.h"
#include "tests/gui/gui_fixtures.h"

namespace {

void GenerateButtons(LDialogGenContext& context) {
    context.AddInput(1, "Name");
    context.AddOkCancelHelp(false, false, false);
}

class DialogRun : public testing::Test {
protected:
    ~DialogRun() override { gtk_widget_destroy(parent); }
    bool ParentEnabled() const { return gtk_widget_get_sensitive(parent) != FALSE; }
    GtkWidget* parent = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    RecordingDialog dialog;
};

TEST_F(DialogRun, RefusedOkAndHelpKeepItOpenThenOkCloses) {
    dialog.okAnswers = {false};
    bool enabledAfterRefusal = true;
    UserScript user({
        [&] { gtk_button_clicked(ButtonOf(dialog, kCommandHelp)); },
        [&] { gtk_button_clicked(ButtonOf(dialog, kCommandOk)); },
        [&] {
            enabledAfterRefusal = ParentEnabled();
            dialog.DoOKButton();
        },
    });
    EXPECT_TRUE(dialog.Open(parent, {"Run", false, GenerateButtons}, true));
    EXPECT_EQ(dialog.calls, "init help ok ok destroy ");
    EXPECT_THAT(dialog.commands, testing::IsEmpty());  // answers are not commands
    EXPECT_FALSE(enabledAfterRefusal);
    EXPECT_TRUE(ParentEnabled());
    EXPECT_FALSE(dialog.IsOpen());
    EXPECT_EQ(dialog.GetControlByID(1), nullptr);
}

TEST_F(DialogRun, CancelButtonEscapeAndRefusedCancel) {
    dialog.cancelAnswers = {false, true};
    const auto escape = [&] { PressEscape(dialog.Widget()); };
    UserScript user({[&] { gtk_button_clicked(ButtonOf(dialog, kCommandCancel)); }, escape});
    EXPECT_FALSE(dialog.Open(parent, {"Run", false, GenerateButtons}, true));
    EXPECT_EQ(dialog.calls, "init cancel cancel destroy ");
}

TEST_F(DialogRun, DestroyedUnderTheLoopEndsItWhateverCancelAnswers) {
    for (const bool answer : {true, false}) {
        RecordingDialog victim;
        victim.cancelAnswers = {answer};
        UserScript user({[&] { gtk_widget_destroy(victim.Widget()); }});
        EXPECT_FALSE(victim.Open(parent, {"Run", false, GenerateButtons}, true));
        EXPECT_EQ(victim.calls, "init cancel ");  // no Close
        EXPECT_TRUE(ParentEnabled());
        EXPECT_FALSE(victim.IsOpen());
    }
}

TEST_F(DialogRun, SecondOpenIsRefusedWhileOpen) {
    bool second = true;
    UserScript user({[&] {
                         second = dialog.Open(nullptr, {"Again", false, GenerateButtons}, true);
                     },
                     [&] { dialog.DoCANCELButton(); }});
    EXPECT_FALSE(dialog.Open(parent, {"Run", false, GenerateButtons}, true));
    EXPECT_FALSE(second);
    EXPECT_EQ(dialog.calls, "init cancel destroy ");
    dialog.calls.clear();
    UserScript again({[&] { dialog.DoOKButton(); }});  // an ended dialog opens anew
    EXPECT_TRUE(dialog.Open(parent, {"Run", false, GenerateButtons}, true));
    EXPECT_EQ(dialog.calls, "init ok destroy ");
}

TEST_F(DialogRun, ModelessAnswersAreCommandsAndClosingHides) {
    gtk_grab_add(parent);
    const guint references = G_OBJECT(parent)->ref_count;
    EXPECT_TRUE(dialog.Open(parent, {"Run", false, GenerateButtons}, false));
    gtk_button_clicked(ButtonOf(dialog, kCommandOk));
    gtk_button_clicked(ButtonOf(dialog, kCommandHelp));
    EXPECT_THAT(dialog.commands, testing::ElementsAre(kCommandOk, kCommandHelp));
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
    PressEscape(dialog.Widget());
    PumpPending();
    ASSERT_TRUE(dialog.IsOpen());
    EXPECT_FALSE(gtk_widget_get_visible(dialog.Widget()));
    EXPECT_EQ(gtk_grab_get_current(), parent);
    gtk_grab_remove(parent);
    dialog.Close(0);
    EXPECT_EQ(G_OBJECT(parent)->ref_count, references - 1);  // the grab's own
    EXPECT_EQ(dialog.calls, "init destroy ");
}

// What a handler may do to its own window, and to the object behind it.
TEST_F(DialogRun, HandlersMayEndTheirWindowOrThemselves) {
    struct Closing : RecordingDialog {
        bool CmOk() override {
            Close(0);
            Close(0);
            return false;
        }
        void Command(int) override { delete this; }
    };
    Closing closing;
    UserScript user({[&] { closing.DoOKButton(); }});
    EXPECT_FALSE(closing.Open(parent, {"Run", false, GenerateButtons}, true));
    EXPECT_EQ(closing.calls, "init destroy ");
    EXPECT_TRUE(ParentEnabled());

    auto* deleted = new Closing;
    deleted->Open(nullptr, {"Run", false, GenerateButtons}, false);
    const auto window = GObjectRef<GtkWidget>::Share(deleted->Widget());
    gtk_button_clicked(ButtonOf(*deleted, kCommandOk));
    gtk_widget_destroy(window.Get());

    auto* inside = new RecordingDialog;
    UserScript killer({[&] { delete inside; }});
    EXPECT_FALSE(inside->Open(parent, {"Run", false, GenerateButtons}, true));
    EXPECT_TRUE(ParentEnabled());
}

TEST_F(DialogRun, AnInnerDialogLeavesTheParentAndItsFocusToTheOuterOne) {
    GtkWidget* entry = gtk_entry_new();
    gtk_container_add(GTK_CONTAINER(parent), entry);
    gtk_widget_show_all(parent);
    gtk_widget_grab_focus(entry);
    bool enabled = true;
    UserScript user({[&] {
                         RecordingDialog inner;
                         UserScript innerUser({[&] { inner.DoOKButton(); }});
                         inner.Open(parent, {"Inner", false, GenerateButtons}, true);
                         enabled = ParentEnabled();
                     },
                     [&] { dialog.DoOKButton(); }});
    EXPECT_TRUE(dialog.Open(parent, {"Run", false, GenerateButtons}, true));
    EXPECT_FALSE(enabled);
    EXPECT_TRUE(ParentEnabled());
    EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(parent)), entry);
}

TEST(DialogControls, WhatIsHiddenStaysHiddenAndLabelsYield) {
    const auto generate = [](LDialogGenContext& context) {
        context.AddEdit(1, "");
        context.AddCheckBox(7, "Number seven");
        context.AddInput(6, "Its label goes under seven");
    };
    RecordingDialog dialog;
    dialog.onInit = [&] { dialog.ShowControl(1, false); };
    dialog.Open(nullptr, {"Hidden", false, generate}, false);
    EXPECT_TRUE(GTK_IS_CHECK_BUTTON(dialog.GetControlByID(7)));
    GtkWidget* frame = gtk_widget_get_parent(dialog.GetControlByID(1));
    EXPECT_FALSE(gtk_widget_get_visible(frame));
    PressClose(dialog.Widget());
    EXPECT_TRUE(dialog.Open(nullptr, {"Hidden", false, generate}, false));  // again, as it was
    EXPECT_TRUE(gtk_widget_get_visible(dialog.Widget()));
    EXPECT_FALSE(dialog.Open(nullptr, {"Hidden", false, generate}, false));
    EXPECT_EQ(dialog.calls, "init ");
    EXPECT_FALSE(gtk_widget_get_visible(frame));
    dialog.ShowControl(1, true);
    EXPECT_TRUE(gtk_widget_get_mapped(dialog.GetControlByID(1)));
}

struct Cell {
    guint left, right, top, bottom, xPadding;
};

Cell CellOf(const LWindow& dialog, int id) {
    GtkWidget* widget = dialog.GetControlByID(id);
    Cell cell{};
    gtk_container_child_get(GTK_CONTAINER(gtk_widget_get_parent(widget)), widget, "left-attach",
                            &cell.left, "right-attach", &cell.right, "top-attach", &cell.top,
                            "bottom-attach", &cell.bottom, "x-padding", &cell.xPadding, nullptr);
    return cell;
}

void GenerateLayout(LDialogGenContext& context) {
    context.AddStatic(1, "Top", 300, 30);
    context.AddInput(2, "Name");
    context.AddGroup(4, "Group", 0);
    context.AddInput(5, "Inside");
    context.AddCheckBox(7, "Check");
    context.GroupEnd();
    context.GroupEnd();  // the top is no group: nothing
    context.StartHBox();
    context.AddButton(8, "Left");
    context.AddButton(9, "Right");
    context.EndHBox();
    context.AddStaticTitle(10, "Title & more");
    context.AddCheckBox(11, "Below");
}

TEST(DialogLayout, RowsColumnsAndIndents) {
    RecordingDialog dialog;
    dialog.Open(nullptr, {"Layout", false, GenerateLayout}, false);
    PumpPending();
    const struct {
        int id;
        guint left, right, row, padding;
    } cases[] = {
        {1, 0, 2, 0, 8}, {3, 0, 1, 1, 8}, {2, 1, 2, 1, 8},  {4, 0, 2, 2, 8},   {6, 0, 1, 0, 8},
        {5, 1, 2, 0, 8}, {7, 0, 2, 1, 8}, {10, 0, 2, 4, 8}, {11, 0, 2, 5, 32},
    };
    for (const auto& c : cases) {
        const Cell cell = CellOf(dialog, c.id);
        EXPECT_EQ(cell.left, c.left) << c.id;
        EXPECT_EQ(cell.right, c.right) << c.id;
        EXPECT_EQ(cell.top, c.row) << c.id;
        EXPECT_EQ(cell.xPadding, c.padding) << c.id;
    }
    const auto x = [&](int id) {
        GtkAllocation place;
        gtk_widget_get_allocation(dialog.GetControlByID(id), &place);
        return place.x;
    };
    int width = 0;
    int height = 0;
    gtk_widget_get_size_request(dialog.GetControlByID(1), &width, &height);
    EXPECT_EQ(std::pair(width, height), std::pair(-1, 30));  // a height leaves the width free
    EXPECT_LT(x(8), x(9));                                   // boxes keep the order of the calls
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(dialog.GetControlByID(10))), " Title & more ");
    guint rows = 0;
    g_object_get(gtk_widget_get_parent(dialog.GetControlByID(1)), "n-rows", &rows, nullptr);
    EXPECT_EQ(rows, 6u);  // shrunk to the rows used
}

template <bool NoHelp, bool NoCancel, bool NoOk>
void GenerateFlags(LDialogGenContext& context) {
    context.AddOkCancelHelp(NoHelp, NoCancel, NoOk);
}

void GenerateSpecial(LDialogGenContext& context) {
    context.AddSpecialOkCancelHelp(5, GTK_STOCK_CLEAR, "Go", true, false, false);
}

int VisibleButtons(const LWindow& dialog) {
    GtkWidget* area = gtk_dialog_get_action_area(GTK_DIALOG(dialog.Widget()));
    GList* children =
        gtk_widget_get_visible(area) ? gtk_container_get_children(GTK_CONTAINER(area)) : nullptr;
    const int count = static_cast<int>(g_list_length(children));
    g_list_free(children);
    return count;
}

TEST(DialogLayout, ActionAreaFollowsItsFlags) {
    const struct {
        void (*generator)(LDialogGenContext&);
        bool help, cancel, ok;
        int buttons;
    } cases[] = {
        {GenerateFlags<false, false, false>, true, true, true, 3},
        {GenerateFlags<true, false, false>, false, true, true, 2},
        {GenerateFlags<true, true, false>, false, false, true, 1},
        {GenerateFlags<false, false, true>, true, true, false, 2},
        {GenerateFlags<true, true, true>, false, false, false, 0},
        {GenerateSpecial, false, true, true, 3},
    };
    for (const auto& c : cases) {
        RecordingDialog dialog;
        dialog.Open(nullptr, {"Flags", false, c.generator}, false);
        EXPECT_EQ(dialog.GetControlByID(kCommandHelp) != nullptr, c.help);
        EXPECT_EQ(dialog.GetControlByID(kCommandCancel) != nullptr, c.cancel);
        EXPECT_EQ(dialog.GetControlByID(kCommandOk) != nullptr, c.ok);
        EXPECT_EQ(VisibleButtons(dialog), c.buttons);
        if (c.buttons == 0) {
            EXPECT_FALSE(gtk_dialog_get_has_separator(GTK_DIALOG(dialog.Widget())));
        }
        if (c.generator == GenerateSpecial) {
            EXPECT_STREQ(gtk_button_get_label(ButtonOf(dialog, kCommandOk)), "Go");
            gtk_button_clicked(ButtonOf(dialog, 5));
            EXPECT_THAT(dialog.commands, testing::ElementsAre(5));
        }
    }
}

void GeneratePage(LDialogGenContext& context) {
    context.AddCheckBox(1, "On this page");
}

TEST(PropertySheet, AsksEveryPageInOrder) {
    Recorder<LPropertyPage> first;
    Recorder<LPropertyPage> second;
    second.okAnswers = {false};
    GtkWidget* sheet = nullptr;
    LPropertySheet sheets;
    sheets.AddPage(first, {"First", false, GeneratePage});
    sheets.AddPage(second, {"Second", false, GeneratePage});
    const auto respond = [&](int response) {
        return [&sheet, &first, response] {
            sheet = first.Widget();
            gtk_dialog_response(GTK_DIALOG(sheet), response);
        };
    };
    UserScript user({respond(kResponseHelp), [&] { gtk_button_clicked(ButtonOf(second, 1)); },
                     respond(kCommandOk), respond(kCommandOk)});
    EXPECT_TRUE(sheets.Open(nullptr, "Options", 1));
    EXPECT_EQ(first.calls, "init ok ok destroy ");
    EXPECT_EQ(second.calls, "init help ok ok destroy ");  // the start page is the one shown
    EXPECT_THAT(second.commands, testing::ElementsAre(1));
    EXPECT_FALSE(first.IsOpen() || second.IsOpen());

    first.cancelAnswers = {false};
    first.calls.clear();
    UserScript cancel({respond(kCommandCancel), respond(kCommandCancel)});
    EXPECT_FALSE(sheets.Open(nullptr, "Options", 0));
    EXPECT_EQ(first.calls, "init cancel cancel destroy ");
}

TEST(PropertySheet, APageMayLoseTheWindowInItsAnswer) {
    struct Destroying : Recorder<LPropertyPage> {
        bool CmOk() override {
            gtk_widget_destroy(Widget());
            return false;
        }
    } page;
    LPropertySheet sheet;
    sheet.AddPage(page, {"Page", false, GeneratePage});
    UserScript user({[&] { gtk_dialog_response(GTK_DIALOG(page.Widget()), GTK_RESPONSE_OK); }});
    EXPECT_FALSE(sheet.Open(nullptr, "Options", 0));
}

TEST(PropertySheet, SeventeenthPageIsIgnored) {
    std::vector<Recorder<LPropertyPage>> pages(17);
    LPropertySheet sheet;
    for (auto& page : pages)
        sheet.AddPage(page, {"Page", false, GeneratePage});
    UserScript user({[&] { gtk_dialog_response(GTK_DIALOG(pages[0].Widget()), GTK_RESPONSE_OK); }});
    EXPECT_TRUE(sheet.Open(nullptr, "Many", 0));
    EXPECT_EQ(pages[15].calls, "init ok destroy ");
    EXPECT_EQ(pages[16].calls, "");
}

GtkWidget* TopLevelTitled(const char* title) {
    GList* windows = gtk_window_list_toplevels();
    GtkWidget* found = nullptr;
    for (GList* window = windows; window != nullptr; window = window->next) {
        const char* text = gtk_window_get_title(GTK_WINDOW(window->data));
        if (text != nullptr && g_strcmp0(text, title) == 0)
            found = GTK_WIDGET(window->data);
    }
    g_list_free(windows);
    return found;
}

TEST(MessageBox, AnswersAndPlainTexts) {
    gchar* shown = nullptr;
    UserScript user({[&] {
                         GtkWidget* box = TopLevelTitled("Title <b>");
                         g_object_get(box, "secondary-text", &shown, nullptr);
                         gtk_dialog_response(GTK_DIALOG(box), GTK_RESPONSE_NO);
                     },
                     [] { PressEscape(TopLevelTitled("Exit")); }});
    EXPECT_EQ(MessageBoxRun(nullptr, GTK_MESSAGE_QUESTION, GTK_BUTTONS_YES_NO, "Title <b>",
                            "100 %s", "a <b> & c"),
              GTK_RESPONSE_NO);
    EXPECT_STREQ(shown, "a <b> & c");
    g_free(shown);
    EXPECT_EQ(MessageBoxRunYesNoCancel(nullptr, "Exit", "Confirm Exit", nullptr),
              GTK_RESPONSE_DELETE_EVENT);
}

TEST(BubbleTip, PointsAtItsControlAndEndsWithTheWindow) {
    RecordingDialog dialog;
    dialog.Open(nullptr, {"Tip", false, GenerateButtons}, false);
    PumpPending();
    dialog.SetControlInvalid(1, "Please select <one>.", "Lectora");
    EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog.Widget())), dialog.GetControlByID(1));
    LBubbleTip tip;
    tip.Show(dialog.GetControlByID(1), "a & b", "text");
    EXPECT_TRUE(tip.IsShown());
    tip.Show(nullptr, "again", "text");
    tip.Hide();
    tip.Hide();
    EXPECT_FALSE(tip.IsShown());
    dialog.BubbleTipHide();
    dialog.SetControlInvalid(999, "no control, no tip", "Lectora");
}

}  // namespace
