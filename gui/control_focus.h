// The keyboard's place in a window while controls come and go under it.
#pragma once

#include <gtk/gtk.h>

// GTK leaves the keyboard nowhere, and a screen reader silent, when the control that has it is
// disabled or hidden. By these it goes on to the next control, and back when the control can be
// used again and the user has not moved on. The control is borrowed. GUI thread.
void SetControlSensitive(GtkWidget* control, bool isSensitive);
void SetControlVisible(GtkWidget* control, bool isVisible);
