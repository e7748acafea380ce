// "Options": what a user sets for good.
#pragma once

#include <gtk/gtk.h>

// Runs the sheet modally; true when it was left by OK. Whoever has hotkeys registered stops them
// before and starts them afterwards as they are stored then. GUI thread, GDK lock held.
bool OptDlg(GtkWidget* parent);
