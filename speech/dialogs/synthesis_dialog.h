// Synthesis under a progress dialog.
#pragma once

#include <gtk/gtk.h>

#include "speech/synthesis.h"

// Runs the request under a dialog titled "Synthesize Voice"; true when the WAV file is there. A
// failure is told to the user in an error box, a cancel is not. GUI thread, inside the GDK lock;
// parent may be null.
bool ProcessDialogRun(GtkWidget* parent, LTTS& request);
