// "Save Text As": the text of the window becomes a text file.
#pragma once

#include <gtk/gtk.h>

#include <string>

// Asks for a file, for which suggestedName stands there first, and writes the text there as UTF-8.
// Its path; empty when the user thought better of it, or when it failed, which he has been told.
// GUI thread, GDK lock held.
std::string SaveTextAs(GtkWidget* parent, const std::string& text,
                       const std::string& suggestedName);
