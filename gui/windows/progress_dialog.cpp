#include "gui/windows/progress_dialog.h"

#include <glib-unix.h>

#include <algorithm>
#include <cmath>

#include "gui/accessible.h"
#include "gui/controls/control_factory.h"
#include "gui/display_text.h"
#include "gui/gui_timer.h"
#include "gui/minimum_size.h"
#include "gui/windows/dialog_frame.h"

namespace {

constexpr unsigned int kWaitStepMs = 75;
constexpr int kFigures = 27;  // characters: "42 %, about 55 seconds left"
constexpr int kCancelResponse = -2;

GtkWidget* Pack(GtkWidget* content, GtkWidget* widget, int height) {
    gtk_box_pack_start(GTK_BOX(content), widget, TRUE, TRUE, 0);
    SetMinimumSize(widget, 160, height);
    return widget;
}

void SetLabel(GtkWidget* label, const char* text) {
    if (label != nullptr)
        gtk_label_set_text(GTK_LABEL(label), DisplayText(text).c_str());
}

}  // namespace

void LProgressDialog::GCStop(GtkDialog*, gint, gpointer host) {
    auto& self = dynamic_cast<LProgressDialog&>(HostOf(host));
    self.stop_ = true;
    self.DestroyDialog();
}

// The window stays until the work has noticed the stop.
gboolean LProgressDialog::GCDelete(GtkWidget*, GdkEvent*, gpointer) {
    return TRUE;
}

// With its parent: nobody sees the work any more, and nobody could stop it.
void LProgressDialog::GCHidden(GtkWidget*, gpointer host) {
    dynamic_cast<LProgressDialog&>(HostOf(host)).stop_ = true;
}

void LProgressDialog::WidgetDetached() {
    stop_ = true;
    bar_ = nullptr;
    figures_ = nullptr;
    firstLabel_ = nullptr;
    secondLabel_ = nullptr;
}

void LProgressDialog::Build(GtkWidget* parent) {
    const auto flags = GtkDialogFlags(GTK_DIALOG_MODAL | GTK_DIALOG_DESTROY_WITH_PARENT);
    GtkWidget* window =
        NewDialogWindow(parent, "Lectora", flags, {{GTK_STOCK_CANCEL, kCancelResponse}});
    AttachWidget(window);
    Connect(window, "response", G_CALLBACK(GCStop));
    Connect(window, "delete-event", G_CALLBACK(GCDelete));
    Connect(window, "hide", G_CALLBACK(GCHidden));

    GtkWidget* content = gtk_dialog_get_content_area(GTK_DIALOG(window));
    firstLabel_ = Pack(content, gtk_label_new(DisplayText(title_).c_str()), 12);
    secondLabel_ = Pack(content, gtk_label_new(""), 12);
    GtkWidget* row = gtk_hbox_new(FALSE, 8);
    bar_ = NewProgressBar();
    SetMinimumSize(bar_, 160, 16);
    gtk_box_pack_start(GTK_BOX(row), bar_, TRUE, TRUE, 0);
    figures_ = gtk_label_new("");
    gtk_label_set_width_chars(GTK_LABEL(figures_), kFigures);
    gtk_misc_set_alignment(GTK_MISC(figures_), 0.0F, 0.5F);
    gtk_box_pack_start(GTK_BOX(row), figures_, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(content), row, TRUE, TRUE, 0);
    start_ = g_get_monotonic_time();
    SetAccessibleName(bar_, title_);
    // A screen reader takes labels of a word or two for captions and says nothing of them.
    atk_object_set_description(gtk_widget_get_accessible(window), DisplayText(title_).c_str());
    gtk_widget_show_all(content);
    SetMinimumSize(window, 300, 110);
    gtk_widget_show_all(window);
}

bool LProgressDialog::Open(GtkWidget* parent) {
    if (IsOpen())
        return true;
    Build(parent);
    MainFunction();
    if (IsOpen())
        gtk_widget_destroy(Widget());
    return true;
}

void LProgressDialog::SetFirstLabel(const char* text) {
    SetLabel(firstLabel_, text);
    Pump();
}

void LProgressDialog::SetSecondLabel(const char* text) {
    SetLabel(secondLabel_, text);
    Pump();
}

void LProgressDialog::SetFraction(double fraction) {
    if (bar_ != nullptr)
        ShowFigures(std::clamp(fraction, 0.0, 1.0));
    Pump();
}

// A screen reader says the bar's name and percent as these go on.
void LProgressDialog::ShowFigures(double fraction) {
    const gint64 now = g_get_monotonic_time();
    if (fraction <= 0)
        start_ = now;
    const std::string left =
        TimeLeftText(fraction, static_cast<double>(now - start_) / G_USEC_PER_SEC);
    std::string figures = std::to_string(static_cast<int>(fraction * 100)) + " %";
    std::string name = DisplayText(title_);
    if (!left.empty()) {
        figures += ", " + left;
        name += ", " + left;
    }
    if (figures != gtk_label_get_text(GTK_LABEL(figures_))) {
        gtk_label_set_text(GTK_LABEL(figures_), figures.c_str());
        SetAccessibleName(bar_, name.c_str());
    }
    gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(bar_), fraction);
}

std::string TimeLeftText(double fraction, double seconds) {
    constexpr double kKnown = 0.02;  // of the whole
    constexpr double kSteady = 2;    // seconds
    constexpr double kStep = 5;      // seconds
    constexpr double kMinute = 60;
    constexpr double kMostMinutes = 90;
    if (fraction < kKnown || fraction >= 1 || seconds < kSteady)
        return "";
    const double left = seconds * (1 - fraction) / fraction;
    if (left < kStep)
        return "a few seconds left";
    const auto about = [](double count, const char* unit) {
        const auto number = static_cast<long>(count);
        return "about " + std::to_string(number) + unit + (number == 1 ? " left" : "s left");
    };
    if (left < kMinute - kStep)
        return about(std::ceil(left / kStep) * kStep, " second");
    if (left < kMostMinutes * kMinute)
        return about(std::round(left / kMinute), " minute");
    return about(std::round(left / kMinute / kMinute), " hour");
}

void LProgressDialog::Turn(bool wait) {
    // Outside any main loop GTK always reports a quit; files named on the command line are read
    // there.
    if (gtk_main_iteration_do(wait) && gtk_main_level() > 0)
        stop_ = true;
}

bool LProgressDialog::Pump() {
    while (!stop_ && gtk_events_pending())
        Turn(false);
    return stop_;
}

// A screen reader asks dozens of questions about a window before it says a word; answered only
// between two steps, they would leave its user in silence for half a minute.
bool LProgressDialog::WaitStep(LSignalObjectRef signal) {
    bool over = false;
    LGuiTimer timer;
    timer.Start(kWaitStepMs, [&over] { over = true; });
    const guint watch = g_unix_fd_add(
        signal.ReadFd(), G_IO_IN,
        [](gint, GIOCondition, gpointer flag) -> gboolean {
            *static_cast<bool*>(flag) = true;
            return G_SOURCE_CONTINUE;
        },
        &over);
    while (!over && !stop_)
        Turn(true);
    g_source_remove(watch);
    return stop_;
}

bool LProgressDialog::IsToStop() {
    return Pump();
}

LProcessResult LProgressDialog::ProcessWaitSignal(LSignalObjectRef signal,
                                                  unsigned int milliseconds) {
    for (;; milliseconds -= kWaitStepMs) {
        if (Pump() || WaitStep(signal))
            return kProcessStopped;
        if (signal.IsSignaled())
            return kProcessDone;
        if (milliseconds <= kWaitStepMs)
            return kProcessFailed;
    }
}

LProcessResult LProgressDialog::ProcessWait(unsigned int milliseconds) {
    const bool timeIsUp =
        ProcessWaitSignal(LSignalObjectRef(), milliseconds) == kProcessFailed;  // never signalled
    return timeIsUp ? kProcessDone : kProcessStopped;
}
