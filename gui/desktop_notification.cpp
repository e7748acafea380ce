#include "gui/desktop_notification.h"

#include <glib-object.h>

#include <string>
#include <utility>

#include "foundation/gdk/gdk_lock.h"
#include "foundation/processes/late_library.h"
#include "gui/display_text.h"
#include "gui/gobject_ref.h"

namespace {

constexpr int kShownMs = 6000;

struct NotifyLibrary {
    // The plain name comes with the development files.
    LateLibrary library{"libnotify.so", "libnotify.so.4"};
    gboolean (*init)(const char* appName) = library.Find<gboolean(const char*)>("notify_init");
    GObject* (*newNotification)(const char* summary, const char* body, const char* icon) =
        library.Find<GObject*(const char*, const char*, const char*)>("notify_notification_new");
    void (*setTimeout)(GObject* notification, gint milliseconds) =
        library.Find<void(GObject*, gint)>("notify_notification_set_timeout");
    gboolean (*show)(GObject* notification, GError** error) =
        library.Find<gboolean(GObject*, GError**)>("notify_notification_show");
    gboolean (*close)(GObject* notification, GError** error) =
        library.Find<gboolean(GObject*, GError**)>("notify_notification_close");
    GType (*getType)() = library.Find<GType()>("notify_notification_get_type");
    bool usable = library.IsWhole() && init("Lectora");
};

// Notification thread only.
const NotifyLibrary& Notify() {
    static const NotifyLibrary library;
    return library;
}

gboolean GCRun(gpointer job) {
    (*static_cast<std::function<void()>*>(job))();
    return G_SOURCE_REMOVE;
}

void PostTo(GMainContext* context, std::function<void()> job) {
    GSource* source = g_idle_source_new();
    g_source_set_callback(source, GCRun,
                          std::make_unique<std::function<void()>>(std::move(job)).release(),
                          [](gpointer data) { delete static_cast<std::function<void()>*>(data); });
    g_source_attach(source, context);
    g_source_unref(source);
}

// The library waits for the service's answers, and belongs to the one thread that uses it. Never
// ended: the program's end does not wait for a service.
GMainContext* NotificationThread() {
    static GMainContext* const context = [] {
        GMainContext* own = g_main_context_new();
        g_thread_unref(g_thread_new(
            "notifications",
            [](gpointer data) -> gpointer {
                auto* mine = static_cast<GMainContext*>(data);
                g_main_context_push_thread_default(mine);
                for (;;)
                    g_main_context_iteration(mine, TRUE);
            },
            own));
        return own;
    }();
    return context;
}

// What the services take for markup would be lost, or hide what follows.
std::string Escaped(const char* text) {
    char* escaped = g_markup_escape_text(DisplayText(text).c_str(), -1);
    std::string result = escaped;
    g_free(escaped);
    return result;
}

bool ShowNow(const std::string& title, const std::string& body, GObjectRef<GObject>& out) {
    const NotifyLibrary& notify = Notify();
    if (!notify.usable)
        return false;
    auto made =
        GObjectRef<GObject>::Adopt(notify.newNotification(title.c_str(), body.c_str(), nullptr));
    if (!G_TYPE_CHECK_INSTANCE_TYPE(made.Get(), notify.getType()))
        return false;
    notify.setTimeout(made.Get(), kShownMs);
    if (!notify.show(made.Get(), nullptr))
        return false;
    out = std::move(made);
    return true;
}

}  // namespace

struct LDesktopNotification::Shown {
    std::function<void()> otherwise;   // GUI thread only; empty once hidden
    GObjectRef<GObject> notification;  // the thread's
};

void LDesktopNotification::Show(const char* title, const char* text,
                                std::function<void()> otherwise) {
    Hide();
    shown_ = std::make_shared<Shown>();
    shown_->otherwise = std::move(otherwise);
    PostTo(NotificationThread(),
           [shown = shown_, title = DisplayText(title), body = Escaped(text)] {
               if (ShowNow(title, body, shown->notification))
                   return;
               PostTo(nullptr, [shown] {
                   const GdkLock lock;
                   if (const auto tell = std::exchange(shown->otherwise, nullptr))
                       tell();
               });
           });
}

void LDesktopNotification::Hide() {
    if (!shown_)
        return;
    shown_->otherwise = nullptr;
    PostTo(NotificationThread(), [shown = std::move(shown_)] {
        if (shown->notification)
            Notify().close(shown->notification.Get(), nullptr);
        shown->notification.Reset();
    });
    shown_.reset();
}
