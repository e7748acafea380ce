// Windows that record what they are told, and ways of acting like a user while a nested main loop
// runs.
#pragma once

#include <gdk/gdkkeysyms.h>
#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

#include "foundation/gdk/gdk_lock.h"
#include "gui/gtk_children.h"
#include "gui/windows/dialog.h"
#include "gui/windows/dialog_gen_context.h"
#include "tests/support/window/main_loop.h"

// Actions performed one after the other from timeouts, inside whatever main loop is running then.
class UserScript {
public:
    explicit UserScript(std::vector<std::function<void()>> actions) : actions_(std::move(actions)) {
        source_ = g_timeout_add(20, Step, this);
    }
    UserScript(const UserScript&) = delete;
    UserScript& operator=(const UserScript&) = delete;
    ~UserScript() {
        if (source_ != 0)
            g_source_remove(source_);
    }
    bool IsDone() const { return next_ == actions_.size(); }

private:
    static gboolean Step(gpointer script) {
        const GdkLock lock;
        auto* self = static_cast<UserScript*>(script);
        if (self->IsDone()) {
            self->source_ = 0;
            return FALSE;
        }
        self->actions_[self->next_++]();
        return TRUE;
    }
    std::vector<std::function<void()>> actions_;
    std::size_t next_ = 0;
    guint source_ = 0;
};

template <typename Base>
class Recorder : public Base {
public:
    using Base::Base;
    // Without a parent, modeless.
    bool Show(void (*generator)(LDialogGenContext&)) {
        return this->Open(nullptr, {"Dialog", false, generator}, false);
    }
    void InitDialog() override {
        calls += "init ";
        if (onInit)
            onInit();
    }
    void DestroyDialog() override { calls += "destroy "; }
    bool CmOk() override {
        calls += "ok ";
        return okRefusals-- <= 0;
    }
    bool CmCancel() override {
        calls += "cancel ";
        return cancelRefusals-- <= 0;
    }
    void CmHelp() override { calls += "help "; }
    void EnableControls() override { ++enableCalls; }
    void Command(int command) override { commands.push_back(command); }

    std::string calls;
    std::vector<int> commands;
    int enableCalls = 0;
    int okRefusals = 0;  // the answer is no so many times
    int cancelRefusals = 0;
    std::function<void()> onInit;
};

using RecordingDialog = Recorder<LDialog>;

inline GtkButton* ButtonOf(const LWindow& window, int id) {
    return GTK_BUTTON(window.GetControlByID(id));
}

// As the Escape key does in a dialog that has the focus.
inline void PressEscape(GtkWidget* window) {
    gtk_bindings_activate(GTK_OBJECT(window), GDK_KEY_Escape, GdkModifierType(0));
}

// The first widget of the type inside, at any depth, of which `is` holds; null when there is none.
inline GtkWidget* FindChild(
    GtkWidget* widget, GType type,
    const std::function<bool(GtkWidget*)>& is = [](GtkWidget*) { return true; }) {
    if (G_TYPE_CHECK_INSTANCE_TYPE(widget, type) && is(widget))
        return widget;
    GtkWidget* found = nullptr;
    if (GTK_IS_CONTAINER(widget))
        for (GtkWidget* child : LGtkChildren(widget))
            if (found == nullptr)
                found = FindChild(child, type, is);
    return found;
}

// Gives the widget an event of its own window; `fill` says what is in it. True when it was handled.
template <typename Fill>
bool SendEvent(GtkWidget* widget, GdkEventType type, Fill fill) {
    GdkEvent* event = gdk_event_new(type);
    event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(widget)));
    fill(*event);
    const bool handled = gtk_widget_event(widget, event) != FALSE;
    gdk_event_free(event);
    return handled;
}

inline void SendKey(GtkWidget* widget, GdkEventType type, guint key) {
    SendEvent(widget, type, [key](GdkEvent& event) {
        event.key.keyval = key;
        event.key.is_modifier = key >= GDK_KEY_Shift_L && key <= GDK_KEY_Hyper_R;
    });
}

// As the window manager does when it makes the window the active one.
inline void Activate(GtkWidget* window) {
    SendEvent(window, GDK_FOCUS_CHANGE, [](GdkEvent& event) { event.focus_change.in = TRUE; });
}

// As the window manager's close button does.
inline void PressClose(GtkWidget* window) {
    if (!SendEvent(window, GDK_DELETE, [](GdkEvent&) {}))
        gtk_widget_destroy(window);
}

// One of the windows of which `is` holds, null when there is none.
template <typename Predicate>
GtkWidget* FindWindow(Predicate is) {
    GtkWidget* found = nullptr;
    GList* windows = gtk_window_list_toplevels();
    for (const GList* window = windows; window != nullptr; window = window->next) {
        if (is(GTK_WIDGET(window->data)))
            found = GTK_WIDGET(window->data);
    }
    g_list_free(windows);
    return found;
}
