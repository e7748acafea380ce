// A short message pointing at a control: a small pop-up beside it.
#pragma once

#include <gtk/gtk.h>

#include "gui/gui_timer.h"

class LBubbleTip {
public:
    LBubbleTip() = default;
    LBubbleTip(const LBubbleTip&) = delete;
    LBubbleTip& operator=(const LBubbleTip&) = delete;
    ~LBubbleTip() { Hide(); }

    // Replaces the tip that is shown. Texts are plain and copied; the control may be any shown
    // widget, or null for none. A screen reader says the text. The tip ends by itself after some
    // seconds. GUI thread.
    void Show(GtkWidget* control, const char* title, const char* text);
    void Hide();
    bool IsShown() const { return popUp_ != nullptr; }

private:
    friend struct LBubbleTipCallbacks;

    GtkWidget* popUp_ = nullptr;  // null once closed
    LGuiTimer timer_;
};
