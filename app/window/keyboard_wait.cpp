#include "app/window/keyboard_wait.h"

#include <utility>

namespace {

constexpr guint kFocusMilliseconds = 2000;

gpointer* Place(GtkWidget*& window) {
    return reinterpret_cast<gpointer*>(&window);
}

}  // namespace

KeyboardWait::~KeyboardWait() {
    LeaveWindow();
}

void KeyboardWait::Start(GtkWidget* window, std::function<void()> callback) {
    LeaveWindow();
    callback_ = std::move(callback);
    window_ = window;
    g_object_add_weak_pointer(G_OBJECT(window_), Place(window_));
    g_signal_connect(window_, "focus-in-event", G_CALLBACK(GCFocusIn), this);
    const bool hasIt = gtk_window_has_toplevel_focus(GTK_WINDOW(window)) != FALSE;
    CallIn(hasIt ? 0 : kFocusMilliseconds);
}

gboolean KeyboardWait::GCFocusIn(GtkWidget*, GdkEventFocus*, gpointer self) {
    static_cast<KeyboardWait*>(self)->CallIn(0);
    return FALSE;
}

void KeyboardWait::CallIn(guint milliseconds) {
    timer_.Start(milliseconds, [this] {
        LeaveWindow();
        std::exchange(callback_, nullptr)();
    });
}

void KeyboardWait::LeaveWindow() {
    if (window_ == nullptr)
        return;
    g_signal_handlers_disconnect_by_func(window_, reinterpret_cast<gpointer>(GCFocusIn), this);
    g_object_remove_weak_pointer(G_OBJECT(window_), Place(window_));
    window_ = nullptr;
}
