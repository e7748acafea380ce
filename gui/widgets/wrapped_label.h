// Labels that break their lines by the room they get.
#pragma once

#include <gtk/gtk.h>

// A new label (floating), aligned left. GTK's own breaks lines by the width it asks for, so it is
// cut off where it gets less.
GtkWidget* NewWrappedLabel(const char* text);
