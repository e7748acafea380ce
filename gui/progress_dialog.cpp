#include "gui/progress_dialog.h"

#include <glib-unix.h>

#include <algorithm>

#include "gui/accessible.h"
#include "gui/dialog_frame.h"
#include "gui/display_text.h"
#include "gui/gui_timer.h"
#include "gui/minimum_size.h"

namespace {

constexpr unsigned int kWaitStepMs = 75;
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

void LProgressDialog::WidgetDetached() {
    bar_ = nullptr;
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

    GtkWidget* content = gtk_dialog_get_content_area(GTK_DIALOG(window));
    firstLabel_ = Pack(content, gtk_label_new(DisplayText(title_).c_str()), 12);
    secondLabel_ = Pack(content, gtk_label_new(""), 12);
    bar_ = Pack(content, gtk_progress_bar_new(), 16);
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
        gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(bar_), std::clamp(fraction, 0.0, 1.0));
    Pump();
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
