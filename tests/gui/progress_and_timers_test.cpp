// Progress dialog, one-shot timers, splash screen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gui/progress_dialog.h"
#include "gui/splash_screen.h"
#include "gui/timer_handler.h"
#include "tests/gui/gui_fixtures.h"

namespace {

struct Work {
    std::function<LProcessResult(LProgressDialog&)> body;
};

template <LProgress P>
LProcessResult Process(P& progress, Work& work) {
    return work.body(progress);
}

struct Outcome {
    LProcessResult result;
    gint64 milliseconds;
};

Outcome RunWork(std::function<LProcessResult(LProgressDialog&)> body, GtkWidget* parent = nullptr) {
    Work work{std::move(body)};
    LProcessDialog<Work> dialog("Working", work);
    EXPECT_EQ(dialog.Result(), kProcessFailed);
    const gint64 start = g_get_monotonic_time();
    EXPECT_TRUE(dialog.Open(parent));
    EXPECT_FALSE(dialog.IsShown());
    return {dialog.Result(), (g_get_monotonic_time() - start) / 1000};
}

GtkWidget* Child(const LProgressDialog& dialog, GType type, int which) {
    GList* children = gtk_container_get_children(
        GTK_CONTAINER(gtk_dialog_get_content_area(GTK_DIALOG(dialog.Widget()))));
    GtkWidget* found = nullptr;
    for (GList* child = children; child != nullptr; child = child->next) {
        if (G_TYPE_CHECK_INSTANCE_TYPE(child->data, type) && which-- == 0)
            found = GTK_WIDGET(child->data);
    }
    g_list_free(children);
    return found;
}

TEST(ProgressDialog, ShowsLabelsAndFraction) {
    const Outcome run = RunWork([](LProgressDialog& dialog) {
        EXPECT_TRUE(dialog.IsShown());
        EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(Child(dialog, GTK_TYPE_LABEL, 0))), "Working");
        dialog.SetFirstLabel("Synthesizing");
        dialog.SetSecondLabel("Please wait...");
        dialog.SetFraction(0.41);
        EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(Child(dialog, GTK_TYPE_LABEL, 0))),
                     "Synthesizing");
        EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(Child(dialog, GTK_TYPE_LABEL, 1))),
                     "Please wait...");
        GtkWidget* bar = Child(dialog, GTK_TYPE_PROGRESS_BAR, 0);
        EXPECT_DOUBLE_EQ(gtk_progress_bar_get_fraction(GTK_PROGRESS_BAR(bar)), 0.41);
        EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(bar)), "Working");
        return dialog.IsToStop() ? kProcessStopped : kProcessDone;
    });
    EXPECT_EQ(run.result, kProcessDone);
}

TEST(ProgressDialog, WaitsRunInStepsOf75Milliseconds) {
    LSignalObject never;
    LSignalObject set;
    set.Signal();
    const struct {
        std::function<LProcessResult(LProgressDialog&)> wait;
        LProcessResult result;
        gint64 atLeast, below;
    } cases[] = {
        {[&](LProgressDialog& d) { return d.ProcessWaitSignal(never.Ref(), 100); }, kProcessFailed,
         150, 225},
        {[&](LProgressDialog& d) { return d.ProcessWaitSignal(never.Ref(), 75); }, kProcessFailed,
         75, 150},
        {[&](LProgressDialog& d) { return d.ProcessWaitSignal(set.Ref(), 0); }, kProcessDone, 0,
         75},
        {[&](LProgressDialog& d) { return d.ProcessWait(50); }, kProcessDone, 75, 150},
        {[&](LProgressDialog& d) { return d.ProcessWait(76); }, kProcessDone, 150, 225},
    };
    for (const auto& c : cases) {
        gint64 taken = 0;
        const Outcome run = RunWork([&](LProgressDialog& dialog) {
            dialog.IsToStop();  // first drawing done
            const gint64 start = g_get_monotonic_time();
            const LProcessResult result = c.wait(dialog);
            taken = (g_get_monotonic_time() - start) / 1000;
            return result;
        });
        EXPECT_EQ(run.result, c.result);
        EXPECT_GE(taken, c.atLeast);
        // A loaded machine may be late, but two steps more are a wrong count.
        EXPECT_LT(taken, c.below + 75);
    }
}

TEST(ProgressDialog, CancelEscapeAndClosingTheWindowStopTheWork) {
    LSignalObject never;
    const std::function<void(LProgressDialog&)> ways[] = {
        [](LProgressDialog& d) {
            gtk_dialog_response(GTK_DIALOG(d.Widget()), GTK_RESPONSE_REJECT);
        },
        [](LProgressDialog& d) { PressEscape(d.Widget()); },
        [](LProgressDialog& d) { PressClose(d.Widget()); },
    };
    for (const auto& way : ways) {
        const Outcome run = RunWork([&](LProgressDialog& dialog) {
            UserScript user({[&] { way(dialog); }});
            const LProcessResult result = dialog.ProcessWaitSignal(never.Ref(), 20000);
            EXPECT_TRUE(dialog.IsShown());   // stays until the work has ended
            EXPECT_TRUE(dialog.IsToStop());  // the stop is never taken back
            dialog.SetFraction(0.5);
            return result;
        });
        EXPECT_EQ(run.result, kProcessStopped);
        EXPECT_LT(run.milliseconds, 1000);
    }
}

TEST(ProgressDialog, ParentMayGoAndTheMainLoopMayQuit) {
    GtkWidget* parent = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    const Outcome gone = RunWork(
        [&](LProgressDialog& dialog) {
            gtk_widget_destroy(parent);
            EXPECT_FALSE(dialog.IsShown());
            dialog.SetFirstLabel("unheard");
            dialog.SetFraction(1);
            return kProcessDone;
        },
        parent);
    EXPECT_EQ(gone.result, kProcessDone);

    LSignalObject never;
    Outcome quit{};
    UserScript user({[&] {
        UserScript quitter({[] { gtk_main_quit(); }});
        quit = RunWork(
            [&](LProgressDialog& dialog) { return dialog.ProcessWaitSignal(never.Ref(), 20000); });
    }});
    gtk_main();
    EXPECT_EQ(quit.result, kProcessStopped);
}

struct TimerRecorder : LTimerHandler {
    void EvTimer(int timerId) override {
        fired.push_back(timerId);
        if (onTimer)
            onTimer(timerId);
    }
    std::vector<int> fired;
    std::function<void(int)> onTimer;
};

TEST(Timers, FireOnceUnlessSetAgain) {
    TimerRecorder timers;
    timers.onTimer = [&](int id) {
        if (id == 1 && timers.fired.size() < 3)
            timers.TimerSet(1, 10);
    };
    timers.TimerSet(1, 10);
    EXPECT_FALSE(PumpUntil([&] { return timers.fired.size() > 3; }, 200));
    EXPECT_THAT(timers.fired, testing::ElementsAre(1, 1, 1));
    timers.TimerReset(1);  // the tag of a fired timer is stale: harmless
    timers.TimerReset(99);
}

TEST(Timers, ResetReplacedAndOrphanedTimersStaySilent) {
    TimerRecorder first;
    TimerRecorder second;
    first.TimerSet(1, 20);
    first.TimerSet(2, 20);
    first.TimerReset(1);
    second.TimerSet(2, 20);  // ids are shared: taken over
    {
        TimerRecorder gone;
        gone.TimerSet(3, 20);
    }
    PumpUntil([] { return false; }, 100);
    EXPECT_THAT(first.fired, testing::IsEmpty());
    EXPECT_THAT(second.fired, testing::ElementsAre(2));
}

TEST(SplashScreen, ClosesByClickOrTimerOnceOnly) {
    LSplashScreen splash;
    splash.Display(nullptr);
    splash.Display(nullptr);
    PumpPending();
    ASSERT_TRUE(splash.IsShown());
    splash.Close();
    splash.Close();
    EXPECT_FALSE(splash.IsShown());

    splash.Display(nullptr);
    GtkWidget* imageBox = nullptr;
    const std::function<void(GtkWidget*)> find = [&](GtkWidget* widget) {
        if (GTK_IS_EVENT_BOX(widget) && GTK_IS_IMAGE(gtk_bin_get_child(GTK_BIN(widget))))
            imageBox = widget;
        else if (GTK_IS_CONTAINER(widget))
            gtk_container_foreach(
                GTK_CONTAINER(widget),
                [](GtkWidget* child, gpointer next) {
                    (*static_cast<const std::function<void(GtkWidget*)>*>(next))(child);
                },
                const_cast<void*>(static_cast<const void*>(&find)));
    };
    GList* windows = gtk_window_list_toplevels();
    for (GList* window = windows; window != nullptr; window = window->next)
        find(GTK_WIDGET(window->data));
    g_list_free(windows);
    ASSERT_NE(imageBox, nullptr);
    GdkEvent* press = gdk_event_new(GDK_BUTTON_PRESS);
    gboolean handled = FALSE;
    g_signal_emit_by_name(imageBox, "button-press-event", press, &handled);
    gdk_event_free(press);
    EXPECT_FALSE(splash.IsShown());

    splash.Display(nullptr);
    EXPECT_FALSE(PumpUntil([&] { return !splash.IsShown(); }, 4500));
    EXPECT_TRUE(PumpUntil([&] { return !splash.IsShown(); }, 1500));
}

}  // namespace
