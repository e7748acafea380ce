// The window that a dialog belongs to.
#pragma once

#include <gtk/gtk.h>

// The top-level window that the widget stands in; null for none, and for a widget in no window.
inline GtkWindow* ParentWindow(GtkWidget* widget) {
    GtkWidget* top = widget != nullptr ? gtk_widget_get_toplevel(widget) : nullptr;
    return GTK_IS_WINDOW(top) ? GTK_WINDOW(top) : nullptr;
}
