// What an empty field asks for, shown in it in grey.
#pragma once

#include <gtk/gtk.h>

// For an entry or a text view; it never becomes the field's text. Copied; empty for none. Screen
// readers get it as the field's description.
void SetPromptText(GtkWidget* field, const char* text);
