// Three numbers from one window to another, also across processes, as an X client message.
#pragma once

#include <gtk/gtk.h>

class LInterWinMessageHandler {
public:
    virtual ~LInterWinMessageHandler() = default;
    virtual void EvInterWinMessage(int first, int second, int third) = 0;

    // Call once; this object must outlive the window. The number is not used.
    void HandleInterWinMessage(GtkWidget* window, int number);
};

// To the X window of a realised top-level widget; null or unrealised widgets get nothing.
void SendInterWinMessage(GtkWidget* widget, int first, int second, int third);

// Dropped silently: callers that must reach a window use SendInterWinMessage.
void PostInterWinMessage(GtkWidget* widget, int first, int second, int third);
