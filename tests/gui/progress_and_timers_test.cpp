// Progress dialog and one-shot timers.
#include <gmock/gmock.h>

#include "gui/accessible.h"
#include "gui/windows/progress_dialog.h"
#include "gui/windows/timer_handler.h"
#include "tests/gui/gui_fixtures.h"

namespace {

struct Work {
    std::function<LProcessResult(LProgressDialog&)> body;
};

LProcessResult Process(LProgress& progress, Work& work) {
    return work.body(dynamic_cast<LProgressDialog&>(progress));
}

LProcessResult RunWork(std::function<LProcessResult(LProgressDialog&)> body,
                       GtkWidget* parent = nullptr) {
    Work work{std::move(body)};
    LProcessDialog<Work> dialog("Working", work);
    EXPECT_EQ(dialog.Result(), kProcessFailed);
    EXPECT_TRUE(dialog.Open(parent));
    EXPECT_FALSE(dialog.IsShown());
    return dialog.Result();
}

TEST(ProgressDialog, WaitsRunInStepsOf75MillisecondsAndAnswerMeanwhile) {
    LSignalObject never;
    LSignalObject set;
    set.Signal();
    const struct {
        std::function<LProcessResult(LProgressDialog&)> wait;
        LProcessResult result;
        gint64 atLeast;  // milliseconds
    } cases[] = {
        {[&](LProgressDialog& d) { return d.ProcessWaitSignal(never.Ref(), 100); }, kProcessFailed,
         150},
        {[&](LProgressDialog& d) { return d.ProcessWaitSignal(never.Ref(), 75); }, kProcessFailed,
         75},
        {[&](LProgressDialog& d) { return d.ProcessWaitSignal(set.Ref(), 0); }, kProcessDone, 0},
        {[&](LProgressDialog& d) { return d.ProcessWait(50); }, kProcessDone, 75},
    };
    for (const auto& c : cases) {
        // A busy machine may be late, but not every time.
        bool inTime = false;
        for (int tries = 0; tries < 20 && !inTime; ++tries) {
            const LProcessResult result = RunWork([&](LProgressDialog& dialog) {
                dialog.IsToStop();  // first drawing done
                int answers = 0;
                const guint questions = g_timeout_add(
                    5, [](gpointer count) -> gboolean { return ++*static_cast<int*>(count) > 0; },
                    &answers);
                const gint64 start = g_get_monotonic_time();
                const LProcessResult waited = c.wait(dialog);
                const gint64 taken = (g_get_monotonic_time() - start) / 1000;
                g_source_remove(questions);
                EXPECT_GE(taken, c.atLeast);
                inTime = taken < c.atLeast + 75 && answers >= c.atLeast / 25;
                return waited;
            });
            EXPECT_EQ(result, c.result);
        }
        EXPECT_TRUE(inTime) << c.atLeast;
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
        const LProcessResult result = RunWork([&](LProgressDialog& dialog) {
            UserScript user({[&] { way(dialog); }});
            const LProcessResult waited = dialog.ProcessWaitSignal(never.Ref(), 60000);
            EXPECT_TRUE(dialog.IsShown());   // stays until the work has ended
            EXPECT_TRUE(dialog.IsToStop());  // the stop is never taken back
            dialog.SetFraction(0.5);
            return waited;
        });
        EXPECT_EQ(result, kProcessStopped);
    }
}

TEST(ProgressDialog, ParentMayGoAndTheMainLoopMayQuit) {
    GtkWidget* parent = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    const LProcessResult gone = RunWork(
        [&](LProgressDialog& dialog) {
            gtk_widget_destroy(parent);
            EXPECT_FALSE(dialog.IsShown());
            dialog.SetFirstLabel("unheard");
            dialog.SetFraction(1);
            return dialog.IsToStop() ? kProcessStopped : kProcessDone;
        },
        parent);
    EXPECT_EQ(gone, kProcessStopped);

    LSignalObject never;
    LProcessResult quit = kProcessFailed;
    UserScript user({[&] {
        UserScript quitter({[] { gtk_main_quit(); }});
        quit = RunWork(
            [&](LProgressDialog& dialog) { return dialog.ProcessWaitSignal(never.Ref(), 60000); });
    }});
    gtk_main();
    EXPECT_EQ(quit, kProcessStopped);
}

TEST(ProgressDialog, TellsItsFiguresAndAssistivePrograms) {
    const LProcessResult told = RunWork([](LProgressDialog& dialog) {
        GtkWidget* bar = FindChild(dialog.Widget(), GTK_TYPE_PROGRESS_BAR);
        GtkAdjustment* value = nullptr;  // as the accessible finds it when it is made
        g_object_get(bar, "adjustment", &value, nullptr);
        if (value == nullptr)
            return kProcessFailed;
        dialog.SetFraction(0.42);
        EXPECT_NEAR(gtk_adjustment_get_value(value), 42, 0.1);
        g_object_unref(value);
        EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(bar)), "Working");
        const auto isFigures = [](GtkWidget* label) {
            return g_strcmp0(gtk_label_get_text(GTK_LABEL(label)), "42 %") == 0;
        };
        EXPECT_NE(FindChild(dialog.Widget(), GTK_TYPE_LABEL, isFigures), nullptr);
        return kProcessDone;
    });
    EXPECT_EQ(told, kProcessDone);
    const struct {
        double fraction, seconds;
        const char* text;
    } cases[] = {{0.5, 1, ""},
                 {0.01, 60, ""},
                 {1, 60, ""},
                 {0.9, 9, "a few seconds left"},
                 {0.5, 27, "about 30 seconds left"},
                 {0.5, 57, "about 1 minute left"},
                 {0.5, 600, "about 10 minutes left"},
                 {0.1, 1200, "about 3 hours left"}};
    for (const auto& c : cases)
        EXPECT_EQ(TimeLeftText(c.fraction, c.seconds), c.text);
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

TEST(Timers, FireOnceUnlessSetAgainResetOrTakenOver) {
    TimerRecorder timers;
    TimerRecorder second;
    timers.onTimer = [&](int id) {
        if (id == 1 && timers.fired.size() < 3)
            timers.TimerSet(1, 10);
    };
    timers.TimerSet(1, 10);
    EXPECT_TRUE(PumpUntil([&] { return timers.fired.size() == 3; }));
    timers.TimerReset(1);  // the tag of a fired timer is stale: harmless
    timers.TimerReset(99);
    timers.TimerSet(2, 10);
    timers.TimerSet(3, 10);
    timers.TimerReset(2);
    second.TimerSet(3, 10);  // ids are shared: taken over
    {
        TimerRecorder gone;
        gone.TimerSet(4, 10);
    }
    second.TimerSet(5, 40);  // due after all others
    EXPECT_TRUE(PumpUntil([&] { return second.fired.size() == 2; }));
    EXPECT_THAT(timers.fired, testing::ElementsAre(1, 1, 1));
    EXPECT_THAT(second.fired, testing::ElementsAre(3, 5));
}

// A screen reader asks for the words when it has the time, and there may be others by then.
TEST(ScreenReaderNews, StaysWhenThereIsMore) {
    const auto window = GObjectRef<GtkWidget>::Share(gtk_window_new(GTK_WINDOW_TOPLEVEL));
    gpointer news[2] = {};  // null once it is gone
    gpointer* next = news;
    const auto hear = [](GSignalInvocationHint*, guint, const GValue* values, gpointer at) {
        gpointer*& place = *static_cast<gpointer**>(at);
        *place = g_value_get_object(values);
        g_object_add_weak_pointer(G_OBJECT(*place), place);
        ++place;
        return gboolean{TRUE};
    };
    gtk_widget_get_accessible(window.Get());  // registers the signal
    const guint signal = g_signal_lookup("state-change", ATK_TYPE_OBJECT);
    const gulong hook = g_signal_add_emission_hook(signal, g_quark_from_static_string("showing"),
                                                   hear, &next, nullptr);
    TellScreenReader(window.Get(), "Saved as one.mp3");
    TellScreenReader(window.Get(), "Saved as two.mp3");
    g_signal_remove_emission_hook(signal, hook);
    ASSERT_EQ(next, std::end(news));
    for (gpointer& one : news) {
        ASSERT_NE(one, nullptr);
        g_object_remove_weak_pointer(G_OBJECT(one), &one);
    }
    gtk_widget_destroy(window.Get());
}

}  // namespace
