// The main window: placement, free layout, keys, hiding.
#include <gtest/gtest.h>

#include "foundation/settings/settings.h"
#include "foundation/threads/thread.h"
#include "gui/controls/control_factory.h"
#include "gui/main_window/idle_answer.h"
#include "gui/main_window/main_window.h"
#include "tests/gui/gui_fixtures.h"

namespace {

class TestWindow : public Recorder<LMainWindow> {
public:
    void InitDialog() override {
        Recorder::InitDialog();
        const LEditWidgets edit = NewEdit(false, GTK_POLICY_ALWAYS);
        AddControl(gtk_entry_new(), 1);
        AddControl(edit.textView, 2, edit.scrolledWindow);
        AddControl(gtk_button_new(), 3);
        static constexpr int kOrder[] = {2, 99, 3, 1};
        SetFocusOrder(kOrder);
        SetStatusText("before");
        SetStatusText("ready");
    }
    void LayoutControls(int width, int height) override {
        int left = 0;
        int top = 0;
        LayoutBase(left, top, width, height);
        laidOut = {width, height};
        MoveControl(1, left + 5, top, width - 10, height);
        MoveControl(99, 0, 0, 10, 10);
    }
    void EvRunArguments(const char* const* arguments, int count) override {
        for (int i = 1; i < count; ++i)
            calls += std::string(arguments[i]) + " ";
    }
    void OnFirstRun() override { calls += "first "; }
    void EvShown() override {
        calls += "shown ";
        onShown();
    }
    std::pair<int, int> laidOut;
    std::function<void()> onShown = [] {};
};

TEST(MainWindow, RunsInOrderAndComesBackWhereItWas) {
    for (const char* key : {"Width", "Height", "X", "Y"})
        LUserSettingSetString("MainWindow", key, nullptr);
    LUserSettingSetString("Settings", "Installed", "0");
    LUserSettingSetString("MainWindow", "Width", "640");
    TestWindow window;
    const char* arguments[] = {"program", "book.txt"};
    bool hidden = false;
    UserScript user({
        [&] {
            for (const auto& [asked, given] : {std::pair{10, 225}, {230, 230}}) {
                gtk_window_resize(GTK_WINDOW(window.Widget()), 10, asked);
                const auto wanted = std::make_pair(280, given - LStatusBar::kHeight);
                EXPECT_TRUE(PumpUntil([&] { return window.laidOut == wanted; }));
            }
            PressClose(window.Widget());
        },
        [&] {
            hidden = window.IsOpen() && !gtk_widget_get_visible(window.Widget());
            window.CmOpen();
            EXPECT_TRUE(gtk_widget_get_visible(window.Widget()));
            window.cancelRefusals = 1;
            window.CmExit();
            EXPECT_TRUE(window.IsOpen());
            window.CmExit();
        },
    });
    window.onShown = [&] {
        // The Tab key goes its round and is not caught in the text box.
        Activate(window.Widget());
        gtk_widget_grab_focus(window.GetControlByID(1));
        for (const int id : {2, 3, 1, 2}) {
            gtk_widget_child_focus(window.Widget(), GTK_DIR_TAB_FORWARD);
            EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(window.Widget())), window.GetControlByID(id));
        }
        EXPECT_FALSE(gtk_text_view_get_accepts_tab(GTK_TEXT_VIEW(window.GetControlByID(2))));

        EXPECT_EQ(window.laidOut, std::make_pair(640, 600 - LStatusBar::kHeight));
    };
    window.Run("Lectora", arguments, 2);
    EXPECT_TRUE(user.IsDone());
    EXPECT_TRUE(hidden);
    EXPECT_EQ(window.calls, "first init book.txt shown cancel cancel destroy ");
    EXPECT_FALSE(window.IsOpen());
    EXPECT_EQ(LUserSettingGetInt("MainWindow", "Width", 0), 280);
    EXPECT_EQ(LUserSettingGetInt("MainWindow", "Height", 0), 230);
    EXPECT_EQ(LUserSettingGet("Settings", "Installed"), "1");
}

TEST(MainWindow, ControlsGiveTheStatusBarTheRoomThatLargeLettersNeed) {
    GtkSettings* const settings = gtk_settings_get_default();
    gchar* font = nullptr;
    g_object_get(settings, "gtk-font-name", &font, nullptr);
    g_object_set(settings, "gtk-font-name", "Sans 30", nullptr);
    TestWindow window;
    const UserScript user({[&] {
        int whole = 0;
        gtk_window_get_size(GTK_WINDOW(window.Widget()), nullptr, &whole);
        const GtkWidget* const bar = FindChild(window.Widget(), GTK_TYPE_STATUSBAR);
        EXPECT_GT(bar->allocation.height, LStatusBar::kHeight);
        EXPECT_EQ(window.laidOut.second, whole - bar->allocation.height);
        window.CmExit();
    }});
    window.Run("Lectora", nullptr, 0);
    EXPECT_TRUE(user.IsDone());
    g_object_set(settings, "gtk-font-name", font, nullptr);
    g_free(font);
}

void Ask(GdkWindow* window, glong number) {
    gdk_property_change(window, gdk_atom_intern(kTellWhenIdle, FALSE),
                        gdk_atom_intern("CARDINAL", FALSE), 32, GDK_PROP_MODE_REPLACE,
                        reinterpret_cast<const guchar*>(&number), 1);
}

bool IsAnswered(GdkWindow* window, glong number) {
    guchar* answer = nullptr;
    const bool isThere =
        gdk_property_get(window, gdk_atom_intern(kIsIdle, FALSE), GDK_NONE, 0, sizeof number, FALSE,
                         nullptr, nullptr, nullptr, &answer) != FALSE;
    const bool isIt = isThere && *reinterpret_cast<const glong*>(answer) == number;
    g_free(answer);
    return isIt;
}

// The main loop sleeps here as it does in the program.
bool WaitForAnswer(GdkWindow* window, glong number, int milliseconds = 10000) {
    const GSourceFunc again = [](gpointer) -> gboolean { return TRUE; };
    const guint wake = g_timeout_add(100, again, nullptr);
    const gint64 end = g_get_monotonic_time() + gint64{1000} * milliseconds;
    while (!IsAnswered(window, number) && g_get_monotonic_time() < end)
        gtk_main_iteration();
    g_source_remove(wake);
    return IsAnswered(window, number);
}

class SlowWorker : public LThread {
public:
    ~SlowWorker() override {
        end.Signal();
        Join();
    }
    LSignalObject end;

private:
    void ThreadFunction() override { ProcessWaitSignalForever(*this, end.Ref()); }
};

TEST(IdleAnswer, ComesOnceTimersCallbacksAndWorkersAreDone) {
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    AnswerWhenIdle(window);
    gtk_widget_show(window);
    GdkWindow* shown = gtk_widget_get_window(window);
    int steps = 30;
    UserScript timer(std::vector<std::function<void()>>(30, [&] { --steps; }));
    Ask(shown, 7);
    EXPECT_TRUE(WaitForAnswer(shown, 7));
    EXPECT_EQ(steps, 0);

    SlowWorker worker;
    worker.Start(0);
    Ask(shown, 8);
    EXPECT_FALSE(WaitForAnswer(shown, 8, 300));
    worker.end.Signal();
    EXPECT_TRUE(WaitForAnswer(shown, 8));
    Ask(shown, 9);
    gtk_main_iteration();
    gtk_widget_destroy(window);  // takes its question with it
    EXPECT_FALSE(PumpUntil([] { return false; }, 100));
}

}  // namespace
