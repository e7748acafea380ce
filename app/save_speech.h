// Saving speech: a text becomes a sound file of the user's choice.
#pragma once

#include <gtk/gtk.h>

#include <string>

// Asks for a file, speaks the text and writes it there as WAV, or as MP3 when the name or the
// stored default says so; an encoder that is missing is fetched. Blocks with dialogs; every failure
// is told to the user. GUI thread.
//
// Gives back what is to be told of a save that went well; nothing of another.
std::string SaveSpeech(GtkWidget* parent, const std::string& text, int voice);
