// A handler may end its window, or delete the object behind it, whatever the user has just done:
// GTK goes on with the control after the handler. Worth most under the address sanitizer; there,
// LECTORA_ACTS=20000 acts longer.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <utility>

#include "gui/gtk_children.h"
#include "gui/main_window/tool_bar.h"
#include "gui/widgets/db_edit.h"
#include "gui/windows/key_dialog.h"
#include "gui/windows/popup_menu.h"
#include "tests/gui/gui_fixtures.h"

namespace {

enum : int {
    kVictimButton = 10,
    kVictimCheck,
    kVictimRadio,
    kVictimList = 20,
    kVictimCombo = 30,
    kVictimEntry = 40,
    kVictimEdit = 50,
    kScroll = 60,
    kRows = 70,
    kVictimTabs = 80,
    kLevel = 90,
    kDate = 100,
    kVictimCool = 110,
    kDrop,
    kHeld,
    kOne = 499,
    kMenuItem,
    kTool,
    kDropDown,
    kPopUpItem,
    kKey,
};

enum class Ending { kNone, kDelete, kClose, kOkAndDelete, kCancelAndDelete, kParent, kCount };

constexpr LKeyToCommandMap kVictimKeys[] = {{GDK_KEY_F7, kKey}};

class Victim : public LKeyDialog, public LToolBar {
public:
    Victim(LDialog& parent, Ending ending, bool& deleted)
        : parent_(parent), ending_(ending), deleted_(deleted) {
        SetKeyMap(kVictimKeys);
    }
    ~Victim() override { deleted_ = true; }

    static void Generate(LDialogGenContext& c) {
        c.AddButton(kVictimButton, "Button");
        c.AddCheckBox(kVictimCheck, "Check");
        c.AddRadioButtonGroup(kOne, "One");
        c.AddRadioButton(kVictimRadio, "Other");
        c.AddPullDownList(kVictimList, "List");
        c.AddComboBox(kVictimCombo, "Combo");
        c.AddInput(kVictimEntry, "Entry");
        c.AddEdit(kVictimEdit, "", LRows{2});
        c.AddScrollBar(kScroll, "Scroll");
        c.AddList(kRows, LRows{2});
        c.AddSpanFull(gtk_notebook_new(), kVictimTabs);
        c.AddDBEdit(kLevel, "Level");
        c.AddDateTime(kDate, "Date", 0);
        for (const int id : {kVictimCool, kDrop, kHeld})
            c.AddSpanFull(gtk_toggle_button_new(), id);
        c.AddOkCancelHelp(kOkCancelHelp);
    }
    void InitDialog() override {
        for (const int id : {kVictimList, kVictimCombo})
            for (const char* text : {"one", "two", "three"})
                PDLAddString(id, text);
        SBSetRange(kScroll, 0, 100, 10);
        static constexpr LListColumn kColumns[] = {{"Name", 100}};
        LVSetStyleCheck(kRows);
        LVInit(kRows, {LListColumns::kPercent, kColumns});
        LVAddString(kRows, "first");
        LVAddString(kRows, "second");
        TABInit(kVictimTabs);
        TABInsertTab(kVictimTabs, 0, "One");
        TABInsertTab(kVictimTabs, 1, "Two");
        DTPInitDateTime(kDate);
        CoolButtonInit(kVictimCool, -1, "Cool");
        CoolButtonInitDropDown(kDrop, -1, "Drop", kDrop);
        CoolButtonInitUpDown(kHeld, -1, "Held", kHeld, kHeld);
        HandlePDLSelChange(kVictimList);
        HandlePDLSelChange(kVictimCombo);
        HandleEditTextChange(kVictimEdit);
        HandleHSBChange(kScroll);
        HandleLVSelChange(kRows);
        HandleLVDoubleClick(kRows);
        HandleTABSelChange(kVictimTabs);
        HandleDTPChange(kDate);
        HandleDBEditChange(kLevel);
        HandleClick(kVictimEntry, kVictimEntry);
        static constexpr LMenuItem kMenu[] = {{-1, "&Menu"}, {kMenuItem, "&Item"}};
        LMenuContainer::SetMenu(*this, kMenu, {});
        static constexpr ToolBarItem kItems[] = {
            {kTool, 1, "Tool", "Tool", ToolBarItem::kToggle},
            {kDropDown, 1, "Drop", "Drop", ToolBarItem::kDropDown}};
        SetToolBar(*this, kItems);
        HandleToolBarItemDropdown(kDropDown, kDropDown);
        static constexpr LMenuItem kPopUp[] = {{kPopUpItem, "Pop"}, {kMenuItem, "Up"}};
        popUp.SetMenu(kPopUp);
    }
    // Until then it hears what its controls tell by themselves: a tab, its page at the first
    // layout.
    void BeginToEnd() { mayEnd_ = true; }
    void Command(int) override {
        const Ending ending = mayEnd_ ? std::exchange(ending_, Ending::kNone) : Ending::kNone;
        if (ending == Ending::kClose)
            return Close(0);
        if (ending == Ending::kParent)
            return parent_.Close(0);
        if (ending == Ending::kOkAndDelete)
            DoOKButton();
        if (ending == Ending::kCancelAndDelete)
            DoCANCELButton();
        if (ending != Ending::kNone)
            delete this;
    }

    GtkWidget* Part(int id) const { return GetControlByID(id); }
    PopupMenu popUp{*this};

private:
    LDialog& parent_;
    Ending ending_;
    bool mayEnd_ = false;
    bool& deleted_;
};

void Click(Victim& v, int id) {
    gtk_button_clicked(GTK_BUTTON(v.Part(id)));
}

void Emit(GtkWidget* widget, const char* signal, int step) {
    g_signal_emit_by_name(widget, signal, step);
}

void Type(GtkWidget* field) {
    g_signal_emit_by_name(field, "insert-at-cursor", "x");
}

void PressAt(GtkWidget* widget, GdkEventType type, double x) {
    SendEvent(widget, type, [x](GdkEvent& event) {
        event.button.button = 1;
        event.button.x = event.button.x_root = x;
        event.button.y = 3;
    });
}

GtkWidget* FirstOf(GtkWidget* container) {
    return LGtkChildren(container).First();
}

// What a user does with each kind of control.
void (*const kActs[])(Victim&) = {
    [](Victim& v) { Click(v, kVictimButton); },
    [](Victim& v) { Click(v, kVictimCheck); },
    [](Victim& v) { Click(v, kVictimRadio); },
    [](Victim& v) { Emit(v.Part(kVictimList), "move-active", GTK_SCROLL_STEP_DOWN); },
    [](Victim& v) {
        gtk_combo_box_popup(GTK_COMBO_BOX(v.Part(kVictimList)));
        AtkObject* menu = gtk_combo_box_get_popup_accessible(GTK_COMBO_BOX(v.Part(kVictimList)));
        auto* shell = GTK_MENU_SHELL(gtk_accessible_get_widget(GTK_ACCESSIBLE(menu)));
        gtk_menu_shell_select_first(shell, TRUE);
        g_signal_emit_by_name(shell, "activate-current", TRUE);
    },
    [](Victim& v) { Type(gtk_bin_get_child(GTK_BIN(v.Part(kVictimCombo)))); },
    [](Victim& v) { Type(v.Part(kVictimEdit)); },
    [](Victim& v) { v.EditTextInsert(kVictimEdit, "by the program"); },
    [](Victim& v) { Emit(v.Part(kScroll), "move-slider", GTK_SCROLL_STEP_RIGHT); },
    [](Victim& v) { PressAt(v.Part(kScroll), GDK_BUTTON_PRESS, 90); },
    [](Victim& v) { gtk_range_set_value(GTK_RANGE(v.Part(kScroll)), 50); },
    [](Victim& v) {
        gboolean moved = FALSE;
        GtkWidget* rows = v.Part(kRows);
        gtk_widget_grab_focus(rows);
        g_signal_emit_by_name(rows, "move-cursor", GTK_MOVEMENT_DISPLAY_LINES, 1, &moved);
    },
    [](Victim& v) { PressAt(v.Part(kRows), GDK_2BUTTON_PRESS, 20); },
    [](Victim& v) { v.LVSetCurSel(kRows, 1); },
    [](Victim& v) { gtk_notebook_next_page(GTK_NOTEBOOK(v.Part(kVictimTabs))); },
    [](Victim& v) {
        SendKey(LDBEdit::GetHandle(v.Part(kLevel), false), GDK_KEY_PRESS, GDK_KEY_End);
    },
    [](Victim& v) { PressAt(LDBEdit::GetHandle(v.Part(kLevel), false), GDK_BUTTON_PRESS, 90); },
    [](Victim& v) {
        GtkWidget* text = LDBEdit::GetHandle(v.Part(kLevel), true);
        gtk_entry_set_text(GTK_ENTRY(text), "-12");
        g_signal_emit_by_name(text, "activate");
    },
    [](Victim& v) { v.SetText(kDate + 1, "2020-02-03"); },
    [](Victim& v) { Click(v, kDate); },
    [](Victim& v) { Click(v, kVictimCool); },
    [](Victim& v) { SendKey(v.Part(kDrop), GDK_KEY_PRESS, GDK_KEY_Down); },
    [](Victim& v) { gtk_button_pressed(GTK_BUTTON(v.Part(kHeld))); },
    [](Victim& v) { PressAt(v.Part(kVictimEntry), GDK_BUTTON_PRESS, 3); },
    [](Victim& v) {
        GtkWidget* item = v.Part(kMenuItem);
        gtk_menu_popup(GTK_MENU(gtk_widget_get_parent(item)), nullptr, nullptr, nullptr, nullptr, 0,
                       0);
        PressAt(item, GDK_BUTTON_PRESS, 3);
    },
    [](Victim& v) {
        v.popUp.Popup();
        PressAt(FirstOf(v.popUp.Widget()), GDK_BUTTON_RELEASE, 9999);
    },
    [](Victim& v) {
        v.popUp.Popup();
        g_signal_emit_by_name(v.popUp.Widget(), "move-current", GTK_MENU_DIR_NEXT);
        g_signal_emit_by_name(v.popUp.Widget(), "activate-current", TRUE);
    },
    [](Victim& v) {
        gtk_button_clicked(GTK_BUTTON(gtk_bin_get_child(GTK_BIN(v.GetToolItemFromID(kTool)))));
    },
    [](Victim& v) { SendKey(v.Widget(), GDK_KEY_PRESS, GDK_KEY_F7); },
    [](Victim& v) { Click(v, kCommandOk); },
    [](Victim& v) { Click(v, kCommandCancel); },
    [](Victim& v) { PressEscape(v.Widget()); },
};

// One dialog, one act, one end; false when its window stayed.
bool ActOnce(std::size_t act, Ending ending, bool modal) {
    RecordingDialog parent;
    parent.Show([](LDialogGenContext& c) { c.AddInput(1, "Parent"); });
    bool deleted = false;
    auto* victim = new Victim(parent, ending, deleted);
    GtkWidget* window = nullptr;
    const auto perform = [&] {
        window = victim->Widget();
        g_object_add_weak_pointer(G_OBJECT(window), reinterpret_cast<gpointer*>(&window));
        victim->BeginToEnd();
        kActs[act](*victim);
        if (!deleted)
            victim->DoCANCELButton();
    };
    if (modal) {
        const UserScript user({perform});
        victim->Open(parent.Widget(), {"Run", false, Victim::Generate}, true);
    } else {
        victim->Open(parent.Widget(), {"Run", false, Victim::Generate}, false);
        perform();
    }
    PumpPending();
    if (!deleted)
        delete victim;
    PumpPending();
    return window == nullptr;
}

TEST(Endings, LeaveNothingBehindWhateverTheUserDidAndHoweverTheHandlerEndedIt) {
    constexpr auto kEndings = static_cast<std::size_t>(Ending::kCount);
    const char* acts = std::getenv("LECTORA_ACTS");
    if (acts == nullptr) {
        for (std::size_t act = 0; act < std::size(kActs); ++act)
            for (const bool modal : {false, true})
                EXPECT_TRUE(ActOnce(act, Ending(1 + (act + modal) % (kEndings - 1)), modal)) << act;
        return;
    }
    std::mt19937 random(4711);
    for (int left = std::atoi(acts); left > 0; --left) {
        const std::size_t act = random() % std::size(kActs);
        const std::size_t ending = random() % kEndings;
        const bool modal = random() % 2 != 0;
        EXPECT_TRUE(ActOnce(act, Ending(ending), modal)) << act << " " << ending << " " << modal;
    }
}

}  // namespace
