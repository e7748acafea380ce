// What making audiobooks takes on this machine.
#pragma once

#include <gtk/gtk.h>

#include "formats/sound_types.h"

// A voice, and what encodes the type; an encoder that can be fetched is. False: the user, in boxes
// of that title, has been told what is missing. GUI thread.
bool HasWhatBooksNeed(GtkWidget* parent, const char* title, SoundType type);
