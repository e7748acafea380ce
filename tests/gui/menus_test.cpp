// Menus, tool bars and keys: what is found, and what reaches the window.
#include <gmock/gmock.h>

#include "gui/content_box.h"
#include "gui/gtk_children.h"
#include "gui/main_window/tool_bar.h"
#include "gui/menus/action.h"
#include "gui/windows/key_dialog.h"
#include "gui/windows/popup_menu.h"
#include "tests/gui/gui_fixtures.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr LMenuItem kMenuBar[] = {
    {-1, "Lectora"},     {-1, "&Read"},      {1011, "Current &Text"}, {0, nullptr},
    {1008, "From_file"}, {-1, nullptr},      {-2001, "Show && hide"}, {-1, nullptr},
    {-1, "&Tools"},      {1021, "&Options"},  // no end row
};
constexpr LKeyToCommandMap kMenuKeys[] = {{kKeyControl | kKeyShift | 'R', 1011}};

struct MenuWindow : Recorder<LKeyDialog>, LToolBar {
    void CmExit() override { calls += "exit "; }
};

class Menus : public testing::Test {
protected:
    void SetUp() override {
        window.Show([](LDialogGenContext& c) { c.AddInput(5, "Field"); });
        LMenuContainer::SetMenu(window, kMenuBar, kMenuKeys);
        PumpPending();
    }
    void Press(GtkWidget* item) {
        ASSERT_NE(item, nullptr);
        GdkEvent* event = gdk_event_new(GDK_BUTTON_PRESS);
        event->button.button = 1;
        gboolean handled = FALSE;
        g_signal_emit_by_name(item, "button-press-event", event, &handled);
        gdk_event_free(event);
    }
    std::vector<int> Taken() { return std::exchange(window.commands, {}); }
    bool Enabled(int command) {
        return gtk_widget_get_sensitive(window.GetControlByID(command)) != FALSE;
    }
    MenuWindow window;
};

TEST_F(Menus, TheTableBecomesMenusWhoseItemsSendOnPressOnly) {
    GtkWidget* read = window.GetControlByID(1011);
    for (const auto& [id, label] :
         {std::pair{1011, "Current _Text"}, {1008, "From__file"}, {2001, "Show & hide"}})
        EXPECT_STREQ(gtk_menu_item_get_label(GTK_MENU_ITEM(window.GetControlByID(id))), label);
    int position = 0;
    EXPECT_EQ(LWindow::_GetMenuItem(gtk_widget_get_parent(read), 1008, position),
              window.GetControlByID(1008));
    EXPECT_EQ(position, 2);  // behind the separator
    EXPECT_EQ(LWindow::CheckSubMenu(gtk_widget_get_parent(window.GetControlByID(2001)), "&Read"),
              0);
    Press(read);
    Press(window.GetControlByID(2001));
    gtk_menu_item_activate(GTK_MENU_ITEM(read));
    EXPECT_THAT(Taken(), ElementsAre(1011, 2001));
    EXPECT_EQ(window.enableCalls, 3) << "and when it opened";
    window.CheckMenuItem(2001, true);
    window.CheckMenuItem(1011, true);  // no check item
    EXPECT_THAT(Taken(), IsEmpty());
    EXPECT_TRUE(gtk_check_menu_item_get_active(GTK_CHECK_MENU_ITEM(window.GetControlByID(2001))));
}

TEST_F(Menus, StandardItemsAndKeysReachTheToolkitsOwnCommands) {
    window.AddStandardMenuItems(true);
    window.HandleInitMenu(77);
    GtkWidget* bar = gtk_widget_get_parent(
        gtk_menu_get_attach_widget(GTK_MENU(gtk_widget_get_parent(window.GetControlByID(1021)))));
    for (GtkWidget* title : LGtkChildren(bar))
        Press(title);
    EXPECT_THAT(Taken(), ElementsAre(77, 77, 77));
    Press(window.GetControlByID(kCommandExit));
    EXPECT_EQ(window.calls, "init exit ");
    window.EnableMenuItem(1011, false);
    window.EnableMenuItem(4711, false);
    EXPECT_FALSE(Enabled(1011));
    EXPECT_FALSE(window.CheckMenuAccelerators(kKeyControl | kKeyShift | 'R'));
    window.EnableMenuItem(1011, true);
    EXPECT_TRUE(window.EvKeyDown(kKeyControl | kKeyShift | 'R'));
    EXPECT_THAT(Taken(), ElementsAre(1011));
    EXPECT_TRUE(window.EvKeyDown(kKeyAlt | GDK_KEY_F4));
    EXPECT_FALSE(gtk_widget_get_visible(window.Widget()));
    EXPECT_FALSE(window.EvKeyDown('X'));
}

TEST_F(Menus, APopUpMenuKeepsItsItemsToItselfAndTheWindowForgetsDeadOnes) {
    constexpr LMenuItem kRows[] = {{1011, "Read"}, {0, nullptr}, {-2002, "Check"}};
    GtkWidget* inBar = window.GetControlByID(1011);
    LWindow::PopupMenu popUp(window);
    for (int i = 0; i < 3; ++i)
        popUp.SetMenu(kRows);
    popUp.EnableMenuItem(1011, false);
    popUp.CheckMenuItem(2002, true);
    EXPECT_TRUE(Enabled(1011));
    EXPECT_EQ(window.GetControlByID(1011), inBar);
    EXPECT_EQ(window.GetControlByID(2002), nullptr);
    Press(LGtkChildren(popUp.Widget()).First());
    EXPECT_THAT(Taken(), ElementsAre(1011));
    popUp.EnableMenuItem(1011, true);
    // Let go where the menu came up, the pointer has chosen nothing yet.
    const auto letGo = [&](int away) {
        popUp.Popup();
        int x = 0;
        int y = 0;
        gdk_display_get_pointer(gdk_display_get_default(), nullptr, &x, &y, nullptr);
        SendEvent(LGtkChildren(popUp.Widget()).First(), GDK_BUTTON_RELEASE, [&](GdkEvent& event) {
            event.button.button = 1;
            event.button.x_root = x + away;
            event.button.y_root = y;
        });
        return Taken();
    };
    EXPECT_THAT(letGo(1), IsEmpty());
    EXPECT_THAT(letGo(40), ElementsAre(1011));

    GtkWidget* newer = gtk_menu_item_new();
    window.SetMenuCommandHandler(newer, 1011);
    EXPECT_EQ(window.GetControlByID(1011), newer);
    const auto kept = GObjectRef<GtkWidget>::Share(newer);  // as assistive programs do
    gtk_widget_destroy(newer);
    EXPECT_EQ(window.GetControlByID(1011), inBar);
}

TEST_F(Menus, ToolBarItemsSendAndChangeByCommand) {
    using Item = LToolBar::ToolBarItem;
    constexpr Item kItems[] = {
        {1011, 28, "Read Aloud", "Read \xff (Ctrl+Shift+R)", Item::kDropDown},
        {0, 0, nullptr, nullptr, Item::kSeparator},
        {31, 27, "Mark", "Mark it", Item::kToggle},
        {32, 0, "Delete", "Delete it", Item::kDelete},
    };
    window.SetToolBar(window, kItems);
    window.AddToolboxAndHelp();
    window.HandleToolBarItemDropdown(1011, 8011);
    GtkWidget* read = window.GetToolItemFromID(1011);
    g_signal_emit_by_name(read, "clicked");
    Press(static_cast<GtkWidget*>(g_object_get_data(G_OBJECT(read), "_arrow")));
    EXPECT_THAT(Taken(), ElementsAre(1011, 8011));
    window.SetToolBarItemCheck(31, true);
    EXPECT_THAT(Taken(), IsEmpty());
    EXPECT_TRUE(
        gtk_toggle_tool_button_get_active(GTK_TOGGLE_TOOL_BUTTON(window.GetToolItemFromID(31))));
    window.EnableToolBarItem(1011, false);
    EXPECT_FALSE(gtk_widget_get_sensitive(read));
    EXPECT_TRUE(Enabled(1011));  // the menu's
    window.HideToolBarItem(32, true);
    gtk_widget_show_all(window.Widget());
    EXPECT_FALSE(gtk_widget_get_visible(window.GetToolItemFromID(32)));
    window.SetToolBarItemText(31, "M\xe4rk");
    EXPECT_STREQ(gtk_tool_button_get_label(GTK_TOOL_BUTTON(window.GetToolItemFromID(31))), "Märk");
    EXPECT_GT(window.GetToolBarHeight(), 20);
    EXPECT_TRUE(GTK_IS_MENU_BAR(LGtkChildren(ContentBox(window.Widget())).First())) << "above it";
    // In the place of a control: under its number, pictures alone.
    window._SetToolBar(window, kItems, 16, 5);
    ASSERT_TRUE(GTK_IS_TOOLBAR(window.GetControlByID(5)));
    EXPECT_EQ(gtk_toolbar_get_style(GTK_TOOLBAR(window.GetControlByID(5))), GTK_TOOLBAR_ICONS);
    EXPECT_EQ(window.GetToolBarHeight(), 0);
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

TEST(KeyDialog, WhatEditsAnEntryIsNotTheWindows) {
    static constexpr LKeyToCommandMap kMap[] = {{kKeyControl | 'Z', 1},  {'X', 2},
                                                {kKeyControl | 'V', 3},  {GDK_KEY_Left, 4},
                                                {kKeyControl | 'F', 10}, {GDK_KEY_F3, 11}};
    Recorder<LKeyDialog> dialog;
    dialog.SetKeyMap(kMap);
    dialog.Show([](LDialogGenContext& c) {
        c.AddInput(5, "Find");
        c.AddButton(7, "Elsewhere");
    });
    const auto pressAll = [&] {
        for (const LKeyToCommandMap& row : kMap)
            SendEvent(dialog.Widget(), GDK_KEY_PRESS, [&](GdkEvent& event) {
                event.key.keyval = gdk_keyval_to_lower(KeyValue(row.key));
                event.key.state = KeyModifiers(row.key);
            });
        return std::exchange(dialog.commands, {});
    };
    gtk_widget_grab_focus(dialog.GetControlByID(5));
    EXPECT_THAT(pressAll(), ElementsAre(5, 10, 11)) << "the entry tells of its x";
    dialog.SetTextEditable(5, false);
    EXPECT_THAT(pressAll(), ElementsAre(1, 2, 3, 4, 10, 11));
    dialog.FocusControl(7);
    EXPECT_THAT(pressAll(), ElementsAre(1, 2, 3, 4, 10, 11));
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

TEST_F(Menus, AnActionLooksTheSameWhereverItStands) {
    constexpr LToolBar::ToolBarItem kItems[] = {
        {1011, 28, "Read", "Read it", LToolBar::ToolBarItem::kButton}};
    window.SetToolBar(window, kItems);
    GtkWidget* tool = window.GetToolItemFromID(1011);
    GtkWidget* item = window.GetControlByID(1011);
    auto* const check = GTK_CHECK_MENU_ITEM(window.GetControlByID(2001));
    const auto button =
        GObjectRef<GtkWidget>::Share(gtk_button_new_with_label("Read the current text"));
    gtk_widget_show(button.Get());
    {
        LAction read(1011);
        read.SetEnabled(false);
        for (GtkWidget* widget : {item, tool, GTK_WIDGET(check)})
            read.AddProxy(widget);
        read.AddProxy(button.Get(), LAction::WhenOff::kHidden);
        EXPECT_FALSE(Enabled(1011));
        EXPECT_FALSE(gtk_widget_get_sensitive(tool));
        EXPECT_FALSE(gtk_widget_get_visible(button.Get()));
        read.SetEnabled(true);
        read.SetChecked(true);
        read.SetLabel("Go &On");
        EXPECT_TRUE(Enabled(1011));
        EXPECT_TRUE(gtk_widget_get_visible(button.Get()));
        EXPECT_TRUE(gtk_check_menu_item_get_active(check));
        EXPECT_STREQ(gtk_menu_item_get_label(GTK_MENU_ITEM(item)), "Go _On");
        EXPECT_STREQ(gtk_tool_button_get_label(GTK_TOOL_BUTTON(tool)), "Go On");
        EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(gtk_bin_get_child(GTK_BIN(button.Get())))),
                     "Go On");
        EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(button.Get())), "Go On");
        gtk_widget_destroy(button.Get());
        read.SetEnabled(false);  // of those that are left
    }
    gtk_widget_destroy(item);  // and without the action
    EXPECT_FALSE(gtk_widget_get_sensitive(tool));
    EXPECT_THAT(Taken(), IsEmpty());
}

}  // namespace
