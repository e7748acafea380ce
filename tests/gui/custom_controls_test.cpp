// The controls that draw themselves, in a real window.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "gui/gtk_children.h"
#include "gui/widgets/cool_button.h"
#include "gui/widgets/db_display.h"
#include "gui/widgets/db_edit.h"
#include "gui/widgets/explorer_bar.h"
#include "gui/widgets/meter_ballistics.h"
#include "tests/gui/gui_fixtures.h"

namespace {

class CustomControls : public testing::Test {
protected:
    ~CustomControls() override { gtk_widget_destroy(window_); }
    static void Pointer(GtkWidget* widget, GdkEventType type, int x) {
        SendEvent(widget, type, [&](GdkEvent& event) {
            (type == GDK_MOTION_NOTIFY ? event.motion.x : event.button.x) = x;
            if (type != GDK_MOTION_NOTIFY)
                event.button.button = 1;
        });
    }
    void Show(GtkWidget* control) {
        gtk_container_add(GTK_CONTAINER(window_), control);
        gtk_widget_show_all(window_);
        EXPECT_TRUE(PumpUntil([&] { return gtk_widget_get_mapped(control) != FALSE; }));
        PumpPending();
    }
    GtkWidget* const window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
};

// Track of 96 pixels: two for a decibel.
class DBEdit : public CustomControls {
protected:
    DBEdit() {
        gtk_widget_set_size_request(display_, 109, 15);
        LDBEdit::Init(108, box_);
        g_signal_connect(box_, kVolumeChangeSignal, G_CALLBACK(+[](GtkWidget*, int i, void* out) {
                             static_cast<std::vector<int>*>(out)->push_back(i);
                         }),
                         &told_);
        Show(box_);
        EXPECT_EQ(display_->allocation.width, 109);
    }
    void Pointer(GdkEventType type, int x) { CustomControls::Pointer(display_, type, x); }
    int Level() const { return LDBEdit::GetLevel(box_).Value(); }
    int Data(const char* key) const {
        return GPOINTER_TO_INT(g_object_get_data(G_OBJECT(display_), key));
    }
    std::string Text() const { return gtk_entry_get_text(GTK_ENTRY(entry_)); }

    GtkWidget* const box_ = LDBEdit::CreateControl();
    GtkWidget* const display_ = LDBEdit::GetHandle(box_, false);
    GtkWidget* const entry_ = LDBEdit::GetHandle(box_, true);
    std::vector<int> told_;
};

TEST_F(DBEdit, TheProgramSetsItWithinItsRangeAndSilently) {
    const struct {
        int set, shown, position, change;
        const char* text;
    } cases[] = {{-6, -6, 52, 25, "-6dB"},
                 {20, 16, 96, 22, "16dB"},
                 {-60, -32, 0, -48, "-32dB"},
                 {0, 0, 64, 32, "0dB"}};
    for (const auto& c : cases) {
        LDBEdit::SetLevel(box_, LDB(c.set));
        EXPECT_EQ(Level(), c.shown);
        EXPECT_EQ(Data("iCurrentPos"), c.position);
        EXPECT_EQ(Data("iChange"), c.change);
        EXPECT_EQ(Text(), c.text);
    }
    LDBEdit::Init(5, box_);
    EXPECT_EQ(Level(), 0) << "wiring again keeps the level";
    EXPECT_TRUE(told_.empty());
}

TEST_F(DBEdit, AScreenReaderSetsNoValueThatIsNoNumber) {
    AtkObject* const accessible = gtk_widget_get_accessible(display_);
    ASSERT_TRUE(ATK_IS_VALUE(accessible));
    LDBEdit::SetLevel(box_, LDB(-12));
    GValue value = G_VALUE_INIT;
    g_value_init(&value, G_TYPE_DOUBLE);
    g_value_set_double(&value, std::nan(""));
    AtkValue* const shown = ATK_VALUE(accessible);
    EXPECT_FALSE(ATK_VALUE_GET_IFACE(shown)->set_current_value(shown, &value));
    EXPECT_EQ(Level(), -12);
}

TEST_F(DBEdit, ThePointerGrabsTheHandleNearItAndJumpsFromAfar) {
    LDBEdit::SetLevel(box_, LDB(-12));  // handle at 40
    Pointer(GDK_BUTTON_PRESS, 50);
    Pointer(GDK_MOTION_NOTIFY, 50);
    EXPECT_EQ(Level(), -12);
    EXPECT_TRUE(told_.empty());
    Pointer(GDK_MOTION_NOTIFY, 57);  // 51 pixels: 25.5 decibels above the lowest
    EXPECT_EQ(Level(), -7);
    Pointer(GDK_MOTION_NOTIFY, 400);
    EXPECT_EQ(Level(), 16);
    Pointer(GDK_BUTTON_RELEASE, 400);
    Pointer(GDK_MOTION_NOTIFY, 20);
    EXPECT_EQ(Level(), 16);
    Pointer(GDK_BUTTON_PRESS, 85);  // 11 from the handle
    Pointer(GDK_MOTION_NOTIFY, 20);
    EXPECT_EQ(Level(), 7) << "a jump is no drag";
    EXPECT_EQ(told_, (std::vector{25, 48, 39}));
}

TEST_F(DBEdit, TypedTextMovesTheHandleAndIsToldWhenTheUserIsDone) {
    gtk_entry_set_text(GTK_ENTRY(entry_), "");
    for (const char* typed : {"-", "-1", "-12"}) {
        gtk_entry_set_text(GTK_ENTRY(entry_), typed);
        SendKey(entry_, GDK_KEY_RELEASE, GDK_KEY_2);
        EXPECT_EQ(Text(), typed) << "the cursor must stay behind what was typed";
    }
    EXPECT_EQ(Level(), -12);
    EXPECT_EQ(Data("iCurrentPos"), 40);
    EXPECT_TRUE(told_.empty());
    gtk_widget_activate(entry_);
    EXPECT_EQ(Text(), "-12dB");
    EXPECT_EQ(told_, std::vector{20});
    for (const guint key : std::vector<guint>{GDK_KEY_Up, GDK_KEY_End, GDK_KEY_End})
        SendKey(display_, GDK_KEY_PRESS, key);
    SendEvent(display_, GDK_SCROLL,
              [](GdkEvent& event) { event.scroll.direction = GDK_SCROLL_DOWN; });
    EXPECT_EQ(told_, (std::vector{20, 21, 48, 47})) << "no change, no notification";

    const auto typeAndLeave = [&](const char* text) {
        gtk_entry_set_text(GTK_ENTRY(entry_), text);
        SendKey(entry_, GDK_KEY_RELEASE, GDK_KEY_minus);
        SendEvent(entry_, GDK_FOCUS_CHANGE, [](GdkEvent&) {});
        return std::exchange(told_, {});
    };
    EXPECT_EQ(typeAndLeave("-24"), (std::vector{20, 21, 48, 47, 8}));
    for (const char* nothing : {"", "-", "loud"})
        EXPECT_TRUE(typeAndLeave(nothing).empty()) << nothing;
    EXPECT_EQ(Text(), "-24dB");
}

TEST(Meter, BarsFallSmoothlyUnderAHeldPeak) {
    constexpr std::int64_t kSecond = 1'000'000;
    LMeterBallistics meter;
    LDBMC levels(2, LDB(-4));
    levels[1] = LDB(40);
    meter.SetLevels(levels, 0);
    EXPECT_EQ(meter.Bar(1, 0), LMeterBallistics::kHighest);
    meter.SetLevels(LDBMC(2), 0);
    const struct {
        double seconds, bar, peak;
    } cases[] = {{0, -4, -4}, {0.5, -19, -4}, {1.5, -36, -4}, {2, -36, -14}, {9, -36, -36}};
    for (const auto& c : cases) {
        const auto now = static_cast<std::int64_t>(c.seconds * kSecond);
        EXPECT_DOUBLE_EQ(meter.Bar(0, now), c.bar) << c.seconds;
        EXPECT_DOUBLE_EQ(meter.Peak(0, now), c.peak) << c.seconds;
        EXPECT_EQ(meter.IsMoving(now), c.seconds < 9) << c.seconds;
    }
    meter.SetLevels(LDBMC(2, LDB(-20)), kSecond / 2);
    EXPECT_DOUBLE_EQ(meter.Bar(0, kSecond), -20) << "it falls no lower than the level";
    meter.SetLevels(LDBMC(1), kSecond);
    meter.SetLevels(LDBMC(2), kSecond);
    EXPECT_DOUBLE_EQ(meter.Peak(1, kSecond), -36) << "a new channel has no past";
}

class CoolButton : public CustomControls {
protected:
    void Init(LCoolButtonKind kind) {
        gtk_widget_set_size_request(button_, 120, 40);
        InitCoolButton(GTK_TOGGLE_BUTTON(button_), kind, -1, "Rewind", {1150, 1151},
                       [this](int command) { sent_.push_back(command); });
        Show(button_);
    }
    GtkWidget* const button_ = gtk_toggle_button_new();
    std::vector<int> sent_;
};

TEST_F(CoolButton, AHeldButtonComesUpOnceHoweverItEnds) {
    Init(LCoolButtonKind::kUpDown);
    const auto pressed = [&] { gtk_button_pressed(GTK_BUTTON(button_)); };
    const struct {
        const char* what;
        std::function<void()> hold, end;
    } cases[] = {
        {"released", pressed, [&] { gtk_button_released(GTK_BUTTON(button_)); }},
        {"insensitive", pressed, [&] { gtk_widget_set_sensitive(button_, FALSE); }},
        {"hidden", pressed, [&] { gtk_widget_hide(button_); }},
        {"key",
         [&] {
             SendKey(button_, GDK_KEY_PRESS, GDK_KEY_space);
             SendKey(button_, GDK_KEY_PRESS, GDK_KEY_space);  // it repeats
         },
         [&] { SendKey(button_, GDK_KEY_RELEASE, GDK_KEY_space); }},
    };
    for (const auto& c : cases) {
        gtk_widget_show(button_);
        gtk_widget_set_sensitive(button_, TRUE);
        c.hold();
        EXPECT_EQ(sent_, std::vector{1150}) << c.what;
        c.end();
        gtk_button_released(GTK_BUTTON(button_));
        EXPECT_EQ(sent_, (std::vector{1150, 1151})) << c.what;
        EXPECT_FALSE(gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(button_))) << c.what;
        sent_.clear();
    }
}

TEST_F(CoolButton, OnlyTheArrowDropsDown) {
    Init(LCoolButtonKind::kDropDown);
    Pointer(button_, GDK_BUTTON_PRESS, 20);
    EXPECT_TRUE(sent_.empty()) << "a press beside the arrow is the button's";
    gtk_button_clicked(GTK_BUTTON(button_));
    Pointer(button_, GDK_BUTTON_PRESS, 112);
    SendKey(button_, GDK_KEY_PRESS, GDK_KEY_Down);
    EXPECT_EQ(sent_, (std::vector{1150, 1151, 1151}));
}

TEST(DecibelControls, ADialogSetsAndHearsThem) {
    RecordingDialog dialog;
    dialog.Show([](LDialogGenContext& context) {
        context.AddDBDisplay(104);
        context.AddDBEdit(108, "Volume");
        context.AddHyperLink(116, "More \xFF", "http://quillon.example/");
    });
    dialog.LDBEditInit(104);                   // no slider
    dialog.DBDisplaySetLevels(108, LDBMC(2));  // no meter
    dialog.HandleDBEditChange(7);
    dialog.DBDisplaySetLevels(104, LDBMC(2, LDB(-9)));
    EXPECT_EQ(LDBDisplay::GetLevels(dialog.GetControlByID(104)).Channels(), 2);
    dialog.DBEditSetLevel(108, LDB(-6));
    dialog.HandleDBEditChange(108, 1080);
    gtk_widget_activate(LDBEdit::GetHandle(dialog.GetControlByID(108), true));
    EXPECT_EQ(dialog.DBEditGetLevel(108).Value(), -6);
    EXPECT_EQ(dialog.commands, std::vector{1080});
}

class ExplorerBar : public CustomControls {
protected:
    ExplorerBar() {
        GtkWidget* widget = bar_->Create([this](int command) { sent_.push_back(command); });
        read_ = bar_->AddTopic("Read Aloud");
        bar_->AddItem(read_, "Read current text", "tip", 1011);
        bar_->AddItem(read_, "Read \xFF", nullptr, 1019);
        bar_->AddTopic("Empty");
        Show(widget);
    }
    // The button or topic that is called so, if it can be seen.
    static GtkWidget* Seen(GtkWidget* from, const char* name) {
        if (!gtk_widget_get_mapped(from))
            return nullptr;
        if ((GTK_IS_BUTTON(from) || GTK_IS_EXPANDER(from)) &&
            g_strcmp0(atk_object_get_name(gtk_widget_get_accessible(from)), name) == 0)
            return from;
        GtkWidget* found = nullptr;
        if (GTK_IS_CONTAINER(from)) {
            for (GtkWidget* child : LGtkChildren(from))
                found = found != nullptr ? found : Seen(child, name);
        }
        return found;
    }
    bool IsSeen(const char* name) {
        PumpPending();
        return Seen(window_, name) != nullptr;
    }
    std::unique_ptr<LExplorerBar> bar_ = std::make_unique<LExplorerBar>();
    int read_ = -1;
    std::vector<int> sent_;
};

TEST_F(ExplorerBar, TopicsFoldAndItemsHide) {
    EXPECT_FALSE(IsSeen("Empty"));
    gtk_widget_activate(Seen(window_, "Read Aloud"));
    EXPECT_TRUE(PumpUntil([&] { return !IsSeen("Read current text"); }));
    EXPECT_TRUE(bar_->IsTopicFolded(read_));
    bar_->FoldTopic(read_, false);
    EXPECT_TRUE(PumpUntil([&] { return IsSeen("Read current text"); }));

    bar_->ShowItem(1011, false);
    gtk_widget_show_all(window_);
    EXPECT_FALSE(IsSeen("Read current text"));
    EXPECT_TRUE(IsSeen("Read \xC3\xBF"));
    bar_->ShowItem(1019, false);
    EXPECT_FALSE(IsSeen("Read Aloud")) << "a topic without items";
    bar_->ShowItem(1011, true);
    bar_->SetItemText(1011, "Read all");
    EXPECT_TRUE(IsSeen("Read all"));
    bar_->ShowItem(7, true);
    EXPECT_FALSE(bar_->IsItemShown(7));
}

TEST_F(ExplorerBar, BarAndWidgetsGoInAnyOrder) {
    auto* const item = GTK_BUTTON(Seen(window_, "Read current text"));
    gtk_button_clicked(item);
    bar_.reset();
    gtk_button_clicked(item);
    EXPECT_EQ(sent_, std::vector{1011});
    LExplorerBar gone;
    gtk_widget_destroy(gone.Create(nullptr));
    gone.ShowItem(1011, false);
    gone.FoldTopic(0, true);
}

}  // namespace
