// Building and running dialogs and property sheets.
#include <gmock/gmock.h>

#include "gui/gtk_children.h"
#include "gui/windows/bubble_tip.h"
#include "gui/windows/message_box.h"
#include "gui/windows/property_sheet.h"
#include "tests/gui/gui_fixtures.h"

namespace {

void GenerateButtons(LDialogGenContext& context) {
    context.AddInput(1, "&Name");
    context.AddOkCancelHelp(kOkCancelHelp);
}

class DialogRun : public testing::Test {
protected:
    ~DialogRun() override { gtk_widget_destroy(parent); }
    // The user acts while it runs.
    bool Run(LDialog& run, std::vector<std::function<void()>> actions) {
        const UserScript user(std::move(actions));
        return run.Open(parent, {"Run", false, GenerateButtons}, true);
    }
    bool ParentEnabled() const { return gtk_widget_get_sensitive(parent) != FALSE; }
    GtkWidget* parent = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    RecordingDialog dialog;
};

TEST_F(DialogRun, AnswersEndItUnlessRefusedAndItOpensAnew) {
    const auto press = [&](int id) {
        return [this, id] { gtk_button_clicked(ButtonOf(dialog, id)); };
    };
    dialog.okRefusals = 1;
    bool enabled = true;
    bool second = true;
    EXPECT_TRUE(Run(dialog, {press(kCommandHelp), press(kCommandOk), [&] {
                                 enabled = ParentEnabled();
                                 second = dialog.Show(GenerateButtons);
                                 dialog.DoOKButton();
                             }}));
    EXPECT_EQ(dialog.calls, "init help ok ok destroy ");
    EXPECT_THAT(dialog.commands, testing::IsEmpty());  // answers are not commands
    EXPECT_FALSE(enabled || second);
    EXPECT_TRUE(ParentEnabled());
    EXPECT_FALSE(dialog.IsOpen());
    EXPECT_EQ(dialog.GetControlByID(1), nullptr);
    dialog.calls.clear();
    dialog.cancelRefusals = 1;
    EXPECT_FALSE(Run(dialog, {press(kCommandCancel), [&] { PressEscape(dialog.Widget()); }}));
    EXPECT_EQ(dialog.calls, "init cancel cancel destroy ");
}

TEST_F(DialogRun, TheKeyboardReachesEverythingAndEntriesTellEachChange) {
    GtkWidget* focus = nullptr;
    const auto entry = [&] { return dialog.GetControlByID(1); };
    const std::vector<std::function<void()>> acts = {
        [&] {
            EXPECT_EQ(dialog.enableCalls, 1) << "as it opened";
            dialog.SetText(1, "by the program");
            dialog.FocusControl(kCommandHelp);
            gtk_window_mnemonic_activate(GTK_WINDOW(dialog.Widget()), GDK_KEY_n, GDK_MOD1_MASK);
            focus = gtk_window_get_focus(GTK_WINDOW(dialog.Widget()));
            EXPECT_EQ(focus, entry());
            g_signal_emit_by_name(entry(), "insert-at-cursor", "x");
            SendKey(dialog.Widget(), GDK_KEY_PRESS, GDK_KEY_F1);
        },
        [&] { gtk_widget_activate(entry()); },  // Enter
    };
    EXPECT_TRUE(Run(dialog, acts));
    EXPECT_EQ(dialog.calls, "init help ok destroy ");
    EXPECT_THAT(dialog.commands, testing::ElementsAre(1));
}

TEST_F(DialogRun, DestroyedUnderTheLoopEndsItWhateverCancelAnswers) {
    for (const int refusals : {0, 1}) {
        RecordingDialog victim;
        victim.cancelRefusals = refusals;
        EXPECT_FALSE(Run(victim, {[&] { gtk_widget_destroy(victim.Widget()); }}));
        EXPECT_EQ(victim.calls, "init cancel ");  // no Close
        EXPECT_TRUE(ParentEnabled());
        EXPECT_FALSE(victim.IsOpen());
    }
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
    EXPECT_FALSE(Run(closing, {[&] { closing.DoOKButton(); }}));
    EXPECT_EQ(closing.calls, "init destroy ");
    EXPECT_TRUE(ParentEnabled());

    auto* deleted = new Closing;
    deleted->Show(GenerateButtons);
    const auto window = GObjectRef<GtkWidget>::Share(deleted->Widget());
    gtk_button_clicked(ButtonOf(*deleted, kCommandOk));
    gtk_widget_destroy(window.Get());

    auto* inside = new RecordingDialog;
    EXPECT_FALSE(Run(*inside, {[&] { delete inside; }}));
    EXPECT_TRUE(ParentEnabled());
}

TEST_F(DialogRun, AnInnerDialogLeavesTheParentAndItsFocusToTheOuterOne) {
    GtkWidget* entry = gtk_entry_new();
    gtk_container_add(GTK_CONTAINER(parent), entry);
    gtk_widget_show_all(parent);
    gtk_widget_grab_focus(entry);
    bool enabled = true;
    const auto runInner = [&] {
        LDialog inner;
        EXPECT_TRUE(Run(inner, {[&] { inner.DoOKButton(); }}));
        enabled = ParentEnabled();
    };
    EXPECT_TRUE(Run(dialog, {runInner, [&] { dialog.DoOKButton(); }}));
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
    dialog.Show(generate);
    EXPECT_TRUE(GTK_IS_CHECK_BUTTON(dialog.GetControlByID(7)));
    GtkWidget* frame = gtk_widget_get_parent(dialog.GetControlByID(1));
    EXPECT_FALSE(gtk_widget_get_visible(frame));
    PressClose(dialog.Widget());
    EXPECT_TRUE(dialog.Show(generate));  // again, as it was
    EXPECT_TRUE(gtk_widget_get_visible(dialog.Widget()));
    EXPECT_FALSE(dialog.Show(generate));
    EXPECT_EQ(dialog.calls, "init ");
    EXPECT_FALSE(gtk_widget_get_visible(frame));
    dialog.ShowControl(1, true);
    EXPECT_TRUE(gtk_widget_get_mapped(dialog.GetControlByID(1)));
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

TEST(DialogLayout, ReadsAsItWasAskedFor) {
    RecordingDialog dialog;
    dialog.Show(GenerateLayout);
    PumpPending();
    const auto place = [&](int id) { return dialog.GetControlByID(id)->allocation; };
    const int rows[] = {1, 2, 4, 5, 7, 8, 10, 11};
    for (std::size_t i = 1; i < std::size(rows); ++i)
        EXPECT_LT(place(rows[i - 1]).y, place(rows[i]).y) << rows[i];
    for (const auto& [left, right] : {std::pair{3, 2}, {6, 5}, {8, 9}})
        EXPECT_LE(place(left).x + place(left).width, place(right).x) << right;
    EXPECT_EQ(place(11).x - place(10).x, 24) << "what follows a title is indented";
    EXPECT_LT(place(7).y + place(7).height, place(4).y + place(4).height) << "in the group";
    EXPECT_EQ(place(1).height, 30);
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(dialog.GetControlByID(10))), " Title & more ");
}

template <LDialogButtons Buttons>
void GenerateFlags(LDialogGenContext& context) {
    context.AddOkCancelHelp(Buttons);
}

void GenerateSpecial(LDialogGenContext& context) {
    context.AddSpecialOkCancelHelp(5, GTK_STOCK_CLEAR, kOkButton | kCancelButton, "G&o");
}

TEST(DialogLayout, ActionAreaFollowsItsFlags) {
    const struct {
        void (*generator)(LDialogGenContext&);
        const char* shown;
    } cases[] = {
        {GenerateFlags<kOkCancelHelp>, "- gtk-help gtk-cancel gtk-ok"},
        {GenerateFlags<(kOkButton | kCancelButton)>, "- gtk-cancel gtk-ok"},
        {GenerateFlags<kOkButton>, "- gtk-ok"},
        {GenerateFlags<(kCancelButton | kHelpButton)>, "- gtk-help gtk-cancel"},
        {GenerateFlags<kNoButtons>, ""},
        {GenerateSpecial, "- gtk-clear gtk-cancel G_o"},
    };
    for (const auto& c : cases) {
        RecordingDialog dialog;
        dialog.Show(c.generator);
        auto* const box = GTK_DIALOG(dialog.Widget());
        std::string shown = gtk_dialog_get_has_separator(box) ? "-" : "";
        for (GtkWidget* button : LGtkChildren(gtk_dialog_get_action_area(box)))
            shown += std::string(" ") + gtk_button_get_label(GTK_BUTTON(button));
        EXPECT_EQ(shown, c.shown);
    }
}

void GeneratePage(LDialogGenContext& context) {
    context.AddCheckBox(1, "On this page");
}

TEST(PropertySheet, AsksEveryPageInOrder) {
    Recorder<LPropertyPage> first;
    Recorder<LPropertyPage> second;
    second.okRefusals = 1;
    LPropertySheet sheets;
    sheets.AddPage(first, {"First", false, GeneratePage});
    sheets.AddPage(second, {"Second", false, GeneratePage});
    const auto respond = [&](int response) {
        return [&first, response] { gtk_dialog_response(GTK_DIALOG(first.Widget()), response); };
    };
    UserScript user({respond(kResponseHelp), [&] { gtk_button_clicked(ButtonOf(second, 1)); },
                     respond(kCommandOk), respond(kCommandOk)});
    EXPECT_TRUE(sheets.Open(nullptr, "Options", 1));
    EXPECT_EQ(first.calls, "init ok ok destroy ");
    EXPECT_EQ(second.calls, "init help ok ok destroy ");  // the start page is the one shown
    EXPECT_THAT(second.commands, testing::ElementsAre(1));
    EXPECT_FALSE(first.IsOpen() || second.IsOpen());

    first.cancelRefusals = 1;
    first.calls.clear();
    UserScript cancel({respond(kCommandCancel), respond(kCommandCancel)});
    EXPECT_FALSE(sheets.Open(nullptr, "Options", 0));
    EXPECT_EQ(first.calls, "init cancel cancel destroy ");
}

TEST(PropertySheet, TakesSixteenPagesOfWhichOneMayLoseTheWindowInItsAnswer) {
    struct Destroying : Recorder<LPropertyPage> {
        bool CmOk() override {
            gtk_widget_destroy(Widget());
            return false;
        }
    };
    std::vector<Destroying> pages(17);
    LPropertySheet sheet;
    for (auto& page : pages)
        sheet.AddPage(page, {"Page", false, GeneratePage});
    UserScript user({[&] { gtk_dialog_response(GTK_DIALOG(pages[0].Widget()), GTK_RESPONSE_OK); }});
    EXPECT_FALSE(sheet.Open(nullptr, "Many", 0));
    EXPECT_EQ(pages[15].calls, "init destroy ");
    EXPECT_EQ(pages[16].calls, "");
}

GtkWidget* BoxTitled(const char* title) {
    return FindWindow([title](GtkWidget* window) {
        return g_strcmp0(gtk_window_get_title(GTK_WINDOW(window)), title) == 0;
    });
}

TEST(MessageBox, AnswersAndPlainTexts) {
    gchar* shown = nullptr;
    UserScript user({[&] {
                         GtkWidget* box = BoxTitled("Title <b>");
                         g_object_get(box, "secondary-text", &shown, nullptr);
                         gtk_dialog_response(GTK_DIALOG(box), GTK_RESPONSE_NO);
                     },
                     [] { PressEscape(BoxTitled("Exit")); }});
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
    dialog.Show(GenerateButtons);
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
