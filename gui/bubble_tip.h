// A short message pointing at a control: a desktop notification, or a small pop-up where the
// desktop has none.
#pragma once

#include <gtk/gtk.h>

#include "gui/gobject_ref.h"
#include "gui/gui_timer.h"

class LBubbleTip {
public:
    LBubbleTip() = default;
    LBubbleTip(const LBubbleTip&) = delete;
    LBubbleTip& operator=(const LBubbleTip&) = delete;
    ~LBubbleTip() { Hide(); }

    // Replaces the tip that is shown. Texts are plain and copied; the control may be any shown
    // widget, or null for none. The tip ends by itself after some seconds. True: as a desktop
    // notification. GUI thread.
    bool Show(GtkWidget* control, const char* title, const char* text);
    void Hide();
    bool IsShown() const { return notification_ || popUp_ != nullptr; }

private:
    friend struct LBubbleTipCallbacks;
    bool ShowNotification(const char* title, const char* text);
    void ShowPopUp(GtkWidget* control, const char* title, const char* text);

    GObjectRef<GObject> notification_;
    gulong closedHandler_ = 0;
    GtkWidget* popUp_ = nullptr;  // null once closed
    LGuiTimer timer_;
};
