// Whether this machine has what reading aloud takes, shown in a window.
#pragma once

#include <gtk/gtk.h>

// Until the user closes the window; `parent` may be null. GUI thread, GDK lock held.
void RunMachineCheck(GtkWidget* parent);

// The same where the trouble was that there is no sound card.
void RunMachineCheckWithoutCard(GtkWidget* parent);
