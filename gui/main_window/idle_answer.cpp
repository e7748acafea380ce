#include "gui/main_window/idle_answer.h"

#include "foundation/gdk/gdk_lock.h"
#include "foundation/threads/thread.h"

namespace {

// For so long nothing happens in the main loop: longer than the pictures of what moves are apart.
constexpr gint kQuietMilliseconds = 50;
constexpr const char* kWaiting = "idle-answer";

// What waits for the main loop to come to rest.
struct IdleSource {
    GSource base;
    GtkWidget* window;
    gint64 quietFrom;  // microseconds
};

// The main loop is about to wait.
gboolean GCIdlePrepare(GSource* source, gint* timeout) {
    *timeout = kQuietMilliseconds;
    reinterpret_cast<IdleSource*>(source)->quietFrom = g_get_monotonic_time();
    return FALSE;
}

// It has waited. What else is ready by now comes first.
gboolean GCIdleCheck(GSource* source) {
    const gint64 quiet = g_get_monotonic_time() - reinterpret_cast<IdleSource*>(source)->quietFrom;
    return quiet >= kQuietMilliseconds * 1000;
}

// With the number of the question; another program may have written anything.
void Answer(GdkWindow* window) {
    guchar* number = nullptr;
    gint length = 0;
    if (gdk_property_get(window, gdk_atom_intern_static_string(kTellWhenIdle), GDK_NONE, 0,
                         sizeof(glong), FALSE, nullptr, nullptr, &length, &number) == FALSE)
        return;
    if (std::size_t(length) >= sizeof(glong))
        gdk_property_change(window, gdk_atom_intern_static_string(kIsIdle),
                            gdk_atom_intern_static_string("CARDINAL"), 32, GDK_PROP_MODE_REPLACE,
                            number, 1);
    g_free(number);
}

gboolean GCIdleAnswer(GSource* source, GSourceFunc, gpointer) {
    const GdkLock lock;
    if (LThread::PendingWork() > 0)
        return G_SOURCE_CONTINUE;
    Answer(gtk_widget_get_window(reinterpret_cast<IdleSource*>(source)->window));
    return G_SOURCE_REMOVE;
}

GSourceFuncs& IdleFunctions() {
    static GSourceFuncs functions{GCIdlePrepare, GCIdleCheck, GCIdleAnswer,
                                  nullptr,       nullptr,     nullptr};
    return functions;
}

void EndSource(gpointer source) {
    g_source_destroy(static_cast<GSource*>(source));
    g_source_unref(static_cast<GSource*>(source));
}

gboolean GCAskedWhenIdle(GtkWidget* window, GdkEventProperty* event, gpointer) {
    if (event->atom != gdk_atom_intern_static_string(kTellWhenIdle) ||
        event->state != GDK_PROPERTY_NEW_VALUE)
        return FALSE;
    GSource* source = g_source_new(&IdleFunctions(), sizeof(IdleSource));
    reinterpret_cast<IdleSource*>(source)->window = window;
    g_source_set_priority(source, G_PRIORITY_LOW);
    g_source_attach(source, nullptr);
    g_object_set_data_full(G_OBJECT(window), kWaiting, source, EndSource);
    return TRUE;
}

}  // namespace

void AnswerWhenIdle(GtkWidget* window) {
    gtk_widget_add_events(window, GDK_PROPERTY_CHANGE_MASK);
    g_signal_connect(window, "property-notify-event", G_CALLBACK(GCAskedWhenIdle), nullptr);
}
