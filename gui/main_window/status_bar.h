// The line of text at the bottom of a window.
#pragma once

#include <gtk/gtk.h>

#include <string>

#include "gui/gui_timer.h"

class LStatusBar {
public:
    static constexpr int kHeight = 24;  // pixels, at least

    int GetStatusBarHeight() const;  // pixels; with large letters it needs more

    // Replaces the text; plain, copied. Does nothing before the window exists.
    void SetStatusText(const char* text);
    // The same for what is news to the user: screen readers say it, in a moment. What a window that
    // closes tells of itself is so much that they drop what comes right behind it.
    void TellStatusText(const char* text);
    // A screen reader says it; the bar keeps its text.
    void SayBesideStatus(const char* text);

    // At its right end, in the order in which they come; hidden until it is shown.
    void AddToStatusBar(GtkWidget* widget);

protected:
    LStatusBar() = default;
    ~LStatusBar();
    LStatusBar(const LStatusBar&) = delete;
    LStatusBar& operator=(const LStatusBar&) = delete;

    GtkWidget* CreateStatusBar();  // with a resize grip; floating, to be packed once

private:
    GtkWidget* bar_ = nullptr;   // owned by its window; cleared when destroyed
    GtkWidget* line_ = nullptr;  // in it
    LGuiTimer telling_;
    std::string untold_;
};
