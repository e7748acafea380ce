#include "app/window/first_moments.h"

#include <utility>

void FirstMoments::Begin(const LWindow& window, std::function<void()> drawn) {
    window_ = &window;
    drawn_ = std::move(drawn);
    drawing_.Connect(window.Widget(), "expose-event", G_CALLBACK(GCFirstDrawing), this);
    focus_.Connect(window.Widget(), "focus-out-event", G_CALLBACK(GCFocusOut), this);
}

gboolean FirstMoments::GCFirstDrawing(GtkWidget*, GdkEventExpose*, gpointer self) {
    static_cast<FirstMoments*>(self)->EvFirstDrawing();
    return FALSE;
}

gboolean FirstMoments::GCFocusOut(GtkWidget*, GdkEventFocus*, gpointer self) {
    static_cast<FirstMoments*>(self)->EndSplash();
    return FALSE;
}

void FirstMoments::EvFirstDrawing() {
    drawing_.Clear();
    if (drawn_)
        drawn_();
    splashTimer_.Start(0, [this] {
        if (gtk_grab_get_current() == nullptr)
            splash_.Display(window_->Widget());
    });
}

void FirstMoments::End() {
    drawing_.Clear();
    focus_.Clear();
    splashTimer_.Stop();
    splash_.Close();
}
