#include "gui/callback_count.h"

#include <algorithm>

#include "foundation/gdk/gdk_lock.h"

namespace {

constexpr const char* kCallbacks = "lectora-callbacks";
constexpr const char* kEnded = "lectora-ended";

using Counts = std::vector<std::shared_ptr<LCallbackCount>>;

Counts* CountsOf(GtkWidget* widget) {
    return static_cast<Counts*>(g_object_get_data(G_OBJECT(widget), kCallbacks));
}

// The windows that GTK destroys with this one.
std::vector<GtkWidget*> DialogsOf(GtkWidget* widget) {
    std::vector<GtkWidget*> dialogs;
    GList* windows = gtk_window_list_toplevels();
    for (const GList* at = windows; at != nullptr; at = at->next) {
        auto* window = GTK_WINDOW(at->data);
        if (GTK_WIDGET(gtk_window_get_transient_for(window)) == widget &&
            gtk_window_get_destroy_with_parent(window))
            dialogs.push_back(GTK_WIDGET(window));
    }
    g_list_free(windows);
    return dialogs;
}

// One whose callbacks hold up the end of this widget; null when nothing does.
LCallbackCount* FindRunning(GtkWidget* widget) {
    if (const Counts* counts = CountsOf(widget)) {
        for (const auto& count : *counts)
            if (count->IsRunning())
                return count.get();
    }
    for (GtkWidget* dialog : DialogsOf(widget))
        if (LCallbackCount* running = FindRunning(dialog))
            return running;
    return nullptr;
}

void Vanish(GtkWidget* widget) {
    g_object_set_data(G_OBJECT(widget), kEnded, GINT_TO_POINTER(1));
    for (GtkWidget* dialog : DialogsOf(widget))
        Vanish(dialog);
    if (GTK_IS_MENU(widget))
        gtk_menu_popdown(GTK_MENU(widget));
    else
        gtk_widget_hide(widget);
}

gboolean GCEnd(gpointer widget) {
    const GdkLock lock;
    EndWidget(GTK_WIDGET(widget));
    return G_SOURCE_REMOVE;
}

}  // namespace

// The last callback has returned, but GTK is still on its way out of the signal.
void LCallbackCount::Leave() {
    if (--running_ > 0)
        return;
    for (const auto& widget : std::exchange(ended_, {}))
        g_idle_add_full(G_PRIORITY_HIGH, GCEnd, g_object_ref(widget.Get()), g_object_unref);
}

void AddCallbacks(GtkWidget* window, const std::shared_ptr<LCallbackCount>& callbacks) {
    Counts* counts = CountsOf(window);
    if (counts == nullptr) {
        counts = std::make_unique<Counts>().release();
        g_object_set_data_full(G_OBJECT(window), kCallbacks, counts,
                               [](gpointer data) { delete static_cast<Counts*>(data); });
    }
    if (std::ranges::find(*counts, callbacks) == counts->end())
        counts->push_back(callbacks);
}

void EndWidget(GtkWidget* widget) {
    LCallbackCount* running = FindRunning(widget);
    if (running == nullptr) {
        gtk_widget_destroy(widget);
        return;
    }
    running->EndLater(widget);
    Vanish(widget);
}

bool IsEnded(GtkWidget* widget) {
    return g_object_get_data(G_OBJECT(widget), kEnded) != nullptr;
}
