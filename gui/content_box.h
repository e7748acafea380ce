// Where a window keeps its content.
#pragma once

#include <gtk/gtk.h>

// The vertical box that menu bars and tool bars are packed into: the content area of a dialog, the
// box in any other window. Null when there is none.
inline GtkWidget* ContentBox(GtkWidget* window) {
    if (GTK_IS_DIALOG(window))
        return gtk_dialog_get_content_area(GTK_DIALOG(window));
    GtkWidget* child = GTK_IS_BIN(window) ? gtk_bin_get_child(GTK_BIN(window)) : nullptr;
    return GTK_IS_BOX(child) ? child : nullptr;
}

// Puts a widget into another's place in its parent; the other is destroyed.
void ReplaceWidget(GtkWidget* placeholder, GtkWidget* widget);
