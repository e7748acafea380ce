// Whether this machine has what reading aloud takes, shown in a window.
#pragma once

#include <gtk/gtk.h>

// Until the user closes the window; `parent` may be null. GUI thread, GDK lock held.
void RunMachineCheck(GtkWidget* parent);
// The same window, with the keyboard in the list of voices that can be installed.
void RunMachineCheckForVoices(GtkWidget* parent);

// Tells that no voice is installed, and offers these two ways out.
void TellNoSpeechEngine(GtkWidget* parent);

// The same where the trouble was that there is no sound card.
void RunMachineCheckWithoutCard(GtkWidget* parent);
