// The splash screen at start-up and the About box, which show the same items.
#pragma once

#include <gtk/gtk.h>

#include "gui/gui_timer.h"

// Shown until it is clicked, 5 seconds have passed, or this object goes.
class LSplashScreen {
public:
    LSplashScreen() = default;
    LSplashScreen(const LSplashScreen&) = delete;
    LSplashScreen& operator=(const LSplashScreen&) = delete;
    ~LSplashScreen() { Close(); }

    void Display(GtkWidget* parent);  // returns at once; nothing while already shown
    void Close();                     // a second close does nothing
    bool IsShown() const { return dialog_ != nullptr; }

    // Fills `box` with the icon (inside `imageBox`, an event box), product, version and maker.
    static void CreateItems(GtkWidget* box, GtkWidget* imageBox);

private:
    friend struct LSplashCallbacks;
    GtkWidget* dialog_ = nullptr;  // null once closed
    LGuiTimer timer_;
};

class LAboutBox {
public:
    static void Open(GtkWidget* parent);  // modeless; any answer destroys it
};
