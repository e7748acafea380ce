#include "app/start/orderly_end.h"

#include <glib-unix.h>
#include <gtk/gtk.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <vector>

#include "foundation/settings/dat_file.h"
#include "foundation/threads/end_signals.h"
#include "gui/gobject_ref.h"

namespace {

// What stands behind a dialog may bring the next one up.
constexpr guint kBetweenRoundsMilliseconds = 10;

// Those with a main loop of their own inside the main one, and the progress dialogs. The answer of
// a user who thinks better of it changes nothing and stores nothing.
void CancelModalDialogs() {
    std::vector<GObjectRef<GtkWidget>> dialogs;
    GList* windows = gtk_window_list_toplevels();
    for (const GList* each = windows; each != nullptr; each = each->next) {
        auto* window = static_cast<GtkWidget*>(each->data);
        if (GTK_IS_DIALOG(window) && gtk_widget_get_visible(window) != FALSE &&
            gtk_window_get_modal(GTK_WINDOW(window)) != FALSE)
            dialogs.push_back(GObjectRef<GtkWidget>::Share(window));
    }
    g_list_free(windows);
    for (const auto& dialog : dialogs)
        gtk_dialog_response(GTK_DIALOG(dialog.Get()), GTK_RESPONSE_CANCEL);
}

}  // namespace

OrderlyEnd::OrderlyEnd() {
    const sigset_t set = EndSignals();
    signals_.Reset(::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
    if (signals_.IsOpen())
        watch_ = g_unix_fd_add(signals_.Get(), G_IO_IN, GCSignal, this);
}

OrderlyEnd::~OrderlyEnd() {
    for (const guint source : {watch_, endLoops_}) {
        if (source != 0)
            g_source_remove(source);
    }
}

void OrderlyEnd::ReadSignals() {
    signalfd_siginfo info;
    while (::read(signals_.Get(), &info, sizeof info) == sizeof info)
        number_ = static_cast<int>(info.ssi_signo);
}

gboolean OrderlyEnd::GCSignal(gint, GIOCondition, gpointer user) {
    auto* self = static_cast<OrderlyEnd*>(user);
    self->ReadSignals();
    if (self->number_ == 0)
        return TRUE;
    self->watch_ = 0;
    sigset_t further;
    sigemptyset(&further);
    sigaddset(&further, SIGTERM);
    sigaddset(&further, SIGINT);
    ::pthread_sigmask(SIG_UNBLOCK, &further, nullptr);
    self->endLoops_ = gdk_threads_add_timeout(kBetweenRoundsMilliseconds, GCEndLoops, self);
    // What a dialog does about its answer may run a loop of its own.
    g_source_set_can_recurse(g_main_context_find_source_by_id(nullptr, self->endLoops_), TRUE);
    return FALSE;
}

// The outermost loop is told first: progress dialogs look there, so that work which goes on after
// one of them was cancelled is stopped at once.
gboolean OrderlyEnd::GCEndLoops(gpointer) {
    if (gtk_main_level() > 0)
        gtk_main_quit();
    CancelModalDialogs();
    return TRUE;
}

void OrderlyEnd::EndProcess() {
    if (number_ == 0)
        ReadSignals();  // on a terminal no main loop does
    if (number_ == 0)
        return;
    LDatFileFlush();  // otherwise saved at a process's own exit
    EndBySignal(number_);
}
