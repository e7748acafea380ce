// The first moments of a window, until the window manager has placed it and given it the keyboard.
#pragma once

#include <gtk/gtk.h>

#include <functional>

#include "gui/gui_timer.h"

// GUI thread. A window manager that has not seen yet that a window has the keyboard takes what
// comes with it for something of a program in the background: it lies over the window, or is left
// without the keyboard.
class KeyboardWait {
public:
    KeyboardWait() = default;
    KeyboardWait(const KeyboardWait&) = delete;
    KeyboardWait& operator=(const KeyboardWait&) = delete;
    ~KeyboardWait();

    // Calls from the main loop, once, when the window, which is shown, has the keyboard; two
    // seconds later where no window manager gives it. The call ends with this object.
    void Start(GtkWidget* window, std::function<void()> callback);
    bool IsWaiting() const { return callback_ != nullptr; }

private:
    static gboolean GCFocusIn(GtkWidget* widget, GdkEventFocus* event, gpointer self);
    void CallIn(guint milliseconds);
    void LeaveWindow();

    GtkWidget* window_ = nullptr;  // borrowed; null once it is gone
    std::function<void()> callback_;
    LGuiTimer timer_;
};
