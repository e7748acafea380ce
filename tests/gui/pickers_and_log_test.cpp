// Date-time pickers, prompts and the status log.
#include <gmock/gmock.h>

#include <ctime>
#include <thread>

#include "gui/display_text.h"
#include "gui/windows/status_window.h"
#include "tests/gui/gui_fixtures.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

class DateTimePicker : public testing::Test {
protected:
    void SetUp() override {
        dialog.Show([](LDialogGenContext& c) { c.AddDateTime(20, "When"); });
    }
    std::vector<int> Taken() { return std::exchange(dialog.commands, {}); }
    RecordingDialog dialog;
};

TEST_F(DateTimePicker, ShowsAndReadsItsForms) {
    const std::time_t noon = LDateTime::FromLocal(2026, 2, 28, 12, 0, 5).UnixSeconds();
    dialog.DTPInitDateTimeLocal(20);
    EXPECT_TRUE(dialog.DTPGetDateTime(20).IsZero());
    dialog.HandleDTPChange(20, 200);
    dialog.DTPSetDateTime(20, LDateTime(noon));
    EXPECT_EQ(dialog.GetText(21), "2026-02-28 12:00:05");
    dialog.DTPSetTime(20, LDayTime(3600));
    EXPECT_EQ(dialog.GetText(21), "2026-02-28 01:00:00");
    EXPECT_THAT(Taken(), ElementsAre(200, 200));
    for (const char* bad : {"2026-02-30 01:00:00", "yesterday", "2026-02-28 01:00:00 x"})
        dialog.SetText(21, bad);
    EXPECT_THAT(Taken(), IsEmpty());
    EXPECT_EQ(dialog.DTPGetDateTime(20).UnixSeconds(), noon - 11 * 3600 - 5);
    SendEvent(dialog.GetControlByID(21), GDK_FOCUS_CHANGE, [](GdkEvent&) {});
    EXPECT_EQ(dialog.GetText(21), "2026-02-28 01:00:00") << "when the field is left";
    dialog.SetText(21, "2026-02-28 12:00:05");
    EXPECT_EQ(dialog.DTPGetDateTime(20).UnixSeconds(), noon);
    dialog.SetText(21, "");
    EXPECT_TRUE(dialog.DTPGetDateTime(20).IsZero());
    EXPECT_THAT(Taken(), ElementsAre(200, 200));

    dialog.DTPInitDateTime(20);
    dialog.DTPSetDateTime(20, LDateTime(86400));
    EXPECT_EQ(dialog.GetText(21), "1970-01-02 00:00:00");
    dialog.DTPSetFormat(20, "%d.%m.%Y");
    EXPECT_EQ(dialog.GetText(21), "02.01.1970");
    dialog.DTPInitTimeOnly(20);
    dialog.DTPSetTime(20, LDayTime(0));
    EXPECT_EQ(dialog.GetText(21), "00:00:00");
    dialog.SetText(21, "23:59:58");
    EXPECT_EQ(dialog.DTPGetTime(20).Seconds(), 86398);
    EXPECT_EQ(dialog.DTPGetDateTime(20).UnixSeconds(), 86398);
    EXPECT_FALSE(gtk_widget_get_visible(dialog.GetControlByID(20)));  // no calendar for a time
}

GtkWidget* FindCalendar() {
    GtkWidget* calendar = nullptr;
    FindWindow([&](GtkWidget* window) {
        GtkWidget* frame = gtk_bin_get_child(GTK_BIN(window));
        GtkWidget* child = GTK_IS_FRAME(frame) ? gtk_bin_get_child(GTK_BIN(frame)) : nullptr;
        calendar = GTK_IS_CALENDAR(child) ? child : calendar;
        return child != nullptr;
    });
    return calendar;
}

TEST_F(DateTimePicker, TheCalendarOfALowWindowIsOnTheScreen) {
    dialog.DTPInitDateOnly(20);
    PumpPending();
    gtk_window_move(GTK_WINDOW(dialog.Widget()), 0, gdk_screen_height() - 60);
    PumpPending();
    gtk_button_clicked(ButtonOf(dialog, 20));
    GtkWidget* const popUp = gtk_widget_get_toplevel(FindCalendar());
    int top = 0;
    gdk_window_get_origin(gtk_widget_get_window(popUp), nullptr, &top);
    GtkRequisition size;
    gtk_widget_size_request(popUp, &size);
    EXPECT_LE(top + size.height, gdk_screen_height());
    EXPECT_GE(top, 0);
}

TEST_F(DateTimePicker, TheCalendarChoosesTheDayAndGoesWithItsWindow) {
    dialog.DTPInitDateOnly(20);
    dialog.DTPSetDateTime(20, LDateTime::FromLocal(2026, 11, 21, 0, 0, 0));
    PumpPending();
    gtk_button_clicked(ButtonOf(dialog, 20));
    GtkWidget* calendar = FindCalendar();
    ASSERT_NE(calendar, nullptr);
    gtk_calendar_select_day(GTK_CALENDAR(calendar), 3);
    EXPECT_EQ(dialog.GetText(21), "2026-11-03");
    g_signal_emit_by_name(calendar, "day-selected-double-click");
    EXPECT_EQ(FindCalendar(), nullptr);
    EXPECT_FALSE(dialog.GetCheck(20));
    gtk_button_clicked(ButtonOf(dialog, 20));
    EXPECT_NE(FindCalendar(), nullptr);
    dialog.Close(0);
    PumpPending();
    EXPECT_EQ(FindCalendar(), nullptr);
}

TEST(ShownTexts, PromptsAreNoTextAndCutsKeepCharactersWhole) {
    RecordingDialog dialog;
    dialog.Open(nullptr, {"\xff title", false, [](LDialogGenContext& c) { c.AddInput(1, "a"); }},
                false);
    dialog.TextPromptSet(1, "type \xfchere");
    EXPECT_EQ(dialog.GetText(1), "");
    EXPECT_STREQ(atk_object_get_description(gtk_widget_get_accessible(dialog.GetControlByID(1))),
                 "type ühere");
    dialog.SetTooltip(1, "\xfc");
    gchar* tip = gtk_widget_get_tooltip_text(dialog.GetControlByID(1));
    EXPECT_STREQ(tip, "ü");
    g_free(tip);
    PumpPending();
    std::string text(258, 'x');
    char out[kTextBufferSize];
    dialog.SetText(1, (text + "€").c_str());  // three bytes from byte 258 on
    dialog.GetText(1, out);
    EXPECT_EQ(out, text);
    dialog.SetText(1, (text + "y€").c_str());
    dialog.GetText(1, out);
    EXPECT_EQ(out, text + "y");
    EXPECT_EQ(WholeCharacters("aé", 2), "a");
    EXPECT_EQ(WholeCharacters("\x80\x80\x80\x80\x80\x80", 5).size(), 5u);
}

TEST(StatusLog, ShowsLinesOfAllThreadsInOrderAndOutlivesItsWindow) {
    LStatusWindow log;
    log.DisplayStatus("before there is a view", 0);
    PumpPending();
    {
        RecordingDialog dialog;
        dialog.Show([](LDialogGenContext& c) { c.AddEditReadOnly(31, "", LRows{3}); });
        log.Init(dialog, 30);
        std::thread([&] {
            log.DisplayStatus("12:34:56", "plain", kLogPlain);
            log.DisplayStatus("12:34:56", "g\xe4nzlich", kLogError);
        }).join();
        log.DisplayStatus("now", kLogInformation);
        log.SetFontSize(20);
        PumpPending();
        const std::string shown = dialog.GetEditText(31);
        EXPECT_THAT(shown, MatchesRegex("12:34:56     plain\n12:34:56 .* gänzlich\n"
                                        "[0-9][0-9]:[0-9][0-9]:[0-9][0-9] .* now\n"));
        GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(dialog.GetControlByID(31)));
        GtkTextTag* red =
            gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(buffer), "error-color");
        for (const int line : {0, 1}) {
            GtkTextIter at;
            gtk_text_buffer_get_iter_at_line(buffer, &at, line);
            EXPECT_EQ(gtk_text_iter_has_tag(&at, red) != FALSE, line == 1);
        }
        for (std::size_t i = 0; i < LStatusWindow::kMaxLines; ++i)
            log.DisplayStatus("00:00:00", "many", kLogPlain);
        PumpPending();
        EXPECT_EQ(gtk_text_buffer_get_line_count(buffer),
                  static_cast<int>(LStatusWindow::kMaxLines) + 1);
        EXPECT_EQ(dialog.GetEditText(31).find("plain"), std::string::npos);
        log.DisplayStatus("queued while the window closes", kLogError);
    }
    PumpPending();
}

}  // namespace
