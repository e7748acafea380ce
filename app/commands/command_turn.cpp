#include "app/commands/command_turn.h"

#include <gtk/gtk.h>

void CommandTurn::PresentDialog() {
    if (GtkWidget* waiting = gtk_grab_get_current())
        gtk_window_present(GTK_WINDOW(gtk_widget_get_toplevel(waiting)));
}
