// The encoder that MP3 files need.
#pragma once

#include <gtk/gtk.h>

// Installs it where it is missing, under a progress dialog. False: there is none, which the user
// has been told, or does not want to wait for. GUI thread, GDK lock held.
bool FetchMp3Encoder(GtkWidget* parent);
