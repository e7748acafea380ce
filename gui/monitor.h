// The part of the desktop that one screen shows.
#pragma once

#include <gtk/gtk.h>

// Of the monitor that shows the widget, in the desktop's pixels; of what is not on the screen yet,
// the one that shows its parent window, else the one with the pointer.
GdkRectangle MonitorOf(GtkWidget* widget);
