// What comes with the window when it is shown for the first time: the splash screen, and whatever
// asks the user something.
#pragma once

#include <functional>

#include "gui/gui_timer.h"
#include "gui/signal_owner.h"
#include "gui/windows/splash_screen.h"
#include "gui/windows/window.h"

// GUI thread. What comes over the window comes after it; the splash screen goes as soon as the user
// does something or a dialog comes, which it would lie over.
class FirstMoments {
public:
    // drawn: once the window is drawn for the first time; may be null. The window is about to be
    // shown, and outlives what is shown.
    void Begin(const LWindow& window, std::function<void()> drawn);
    void EndSplash() { splash_.Close(); }
    void End();  // before the window goes

private:
    static gboolean GCFirstDrawing(GtkWidget* widget, GdkEventExpose* event, gpointer self);
    static gboolean GCFocusOut(GtkWidget* widget, GdkEventFocus* event, gpointer self);
    void EvFirstDrawing();

    const LWindow* window_ = nullptr;
    std::function<void()> drawn_;
    LSplashScreen splash_;
    LGuiTimer splashTimer_;
    LSignalOwner drawing_;
    LSignalOwner focus_;
};
