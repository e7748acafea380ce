// How large the window's two large buttons are.
#pragma once

#include <gtk/gtk.h>

// What the widest of their texts takes beside its picture, in the button's letters.
GtkRequisition LargeButtonSize(GtkWidget* button);
