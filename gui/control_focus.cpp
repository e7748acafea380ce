#include "gui/control_focus.h"

namespace {

// Where a window's keyboard was when its control went, and where it is meanwhile; on the window,
// for comparison only: either may be gone.
constexpr const char* kLostFocus = "lectora-lost-focus";
constexpr const char* kStandInFocus = "lectora-stand-in-focus";
constexpr int kMostSteps = 50;  // out of a control that holds others

using Setter = void (*)(GtkWidget* control, gboolean canBeUsed);

bool IsWithin(GtkWidget* widget, GtkWidget* control) {
    return widget == control || gtk_widget_is_ancestor(widget, control) != FALSE;
}

// On to the next control, or to the window's first one where there is no next.
void TakeAway(GtkWidget* control, GtkWidget* window, Setter set) {
    const auto focus = [window] { return gtk_window_get_focus(GTK_WINDOW(window)); };
    const auto isAt = [&] { return focus() != nullptr && IsWithin(focus(), control); };
    const bool wasAt = isAt();
    if (wasAt && g_object_get_data(G_OBJECT(window), kStandInFocus) != focus())
        g_object_set_data(G_OBJECT(window), kLostFocus, control);
    for (int step = 0; step < kMostSteps && isAt(); ++step)
        gtk_widget_child_focus(window, GTK_DIR_TAB_FORWARD);
    set(control, FALSE);
    if (wasAt && focus() == nullptr)
        gtk_widget_child_focus(window, GTK_DIR_TAB_FORWARD);
    if (wasAt)
        g_object_set_data(G_OBJECT(window), kStandInFocus, focus());
}

// Unless the user has gone elsewhere.
void GiveFocusBack(GtkWidget* control, GtkWidget* window) {
    if (g_object_get_data(G_OBJECT(window), kLostFocus) != control)
        return;
    GtkWidget* const now = gtk_window_get_focus(GTK_WINDOW(window));
    if (now == g_object_get_data(G_OBJECT(window), kStandInFocus)) {
        if (gtk_widget_get_can_focus(control))
            gtk_widget_grab_focus(control);
        else
            gtk_widget_child_focus(control, GTK_DIR_TAB_FORWARD);
    }
    g_object_set_data(G_OBJECT(window), kLostFocus, nullptr);
    g_object_set_data(G_OBJECT(window), kStandInFocus, nullptr);
}

// With what it holds, unless it is left out when its window is shown.
void SetVisible(GtkWidget* control, gboolean isVisible) {
    if (isVisible)
        gtk_widget_show_all(control);
    gtk_widget_set_visible(control, isVisible);
}

void Change(GtkWidget* control, bool canBeUsed, Setter set) {
    GtkWidget* const window = gtk_widget_get_toplevel(control);
    if (!GTK_IS_WINDOW(window)) {
        set(control, canBeUsed);
    } else if (canBeUsed) {
        set(control, TRUE);
        GiveFocusBack(control, window);
    } else {
        TakeAway(control, window, set);
    }
}

}  // namespace

void SetControlSensitive(GtkWidget* control, bool isSensitive) {
    if ((gtk_widget_get_sensitive(control) != FALSE) != isSensitive)
        Change(control, isSensitive, gtk_widget_set_sensitive);
}

void SetControlVisible(GtkWidget* control, bool isVisible) {
    if ((gtk_widget_get_visible(control) != FALSE) != isVisible)
        Change(control, isVisible, SetVisible);
}
