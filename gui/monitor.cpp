#include "gui/monitor.h"

namespace {

GdkWindow* WindowOf(GtkWidget* widget) {
    GdkWindow* window = gtk_widget_get_window(widget);
    if (window != nullptr)
        return window;
    GtkWidget* top = gtk_widget_get_toplevel(widget);
    GtkWindow* parent =
        GTK_IS_WINDOW(top) ? gtk_window_get_transient_for(GTK_WINDOW(top)) : nullptr;
    return parent != nullptr ? gtk_widget_get_window(GTK_WIDGET(parent)) : nullptr;
}

}  // namespace

GdkRectangle MonitorOf(GtkWidget* widget) {
    GdkScreen* screen = gtk_widget_get_screen(widget);
    int number = 0;
    if (GdkWindow* window = WindowOf(widget)) {
        number = gdk_screen_get_monitor_at_window(screen, window);
    } else {
        int x = 0;
        int y = 0;
        gdk_display_get_pointer(gdk_screen_get_display(screen), nullptr, &x, &y, nullptr);
        number = gdk_screen_get_monitor_at_point(screen, x, y);
    }
    GdkRectangle place;
    gdk_screen_get_monitor_geometry(screen, number, &place);
    return place;
}
