// Saving speech: a text becomes a sound file of the user's choice.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

#include "speech/voice_stretches.h"

// Asks for a file, for which suggestedName stands there first, speaks the text and writes it there
// in the format that the chosen name tells; an encoder that is missing is fetched. Blocks with
// dialogs; every failure is told to the user. Cancelled, a file that was there stays as it was, and
// a new one holds what was spoken by then. GUI thread, GDK lock held.
//
// Gives back what is to be told in the status bar, how it ended; empty when nothing is.
// languages: what the text's document says of its language.
std::string SaveSpeech(GtkWidget* parent, const std::string& text, int voice,
                       const std::string& suggestedName, std::vector<LanguageMark> languages);
