// Saving speech: a text becomes a sound file of the user's choice.
#pragma once

#include <gtk/gtk.h>

#include <string>

#include "app/reading/reading_info.h"

// Asks for a file, for which suggestedName stands there first, speaks the text and writes it there
// in the format that the chosen name tells; an encoder that is missing is fetched. Blocks with
// dialogs; every failure is told to the user. Cancelled, a file that was there stays as it was, and
// a new one holds what was spoken by then. GUI thread, GDK lock held.
//
// Gives back what is to be told in the status bar, how it ended; empty when nothing is.
std::string SaveSpeech(GtkWidget* parent, const ReadingText& text, int voice,
                       const std::string& suggestedName);
