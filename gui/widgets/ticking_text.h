// A line of text that changes again and again, as a time does.
#pragma once

#include <gtk/gtk.h>

#include <string>

// A new line (floating), at least so many characters wide; what has no room is cut with an
// ellipsis. A label would have its whole window laid out anew at each change, and tell a screen
// reader a dozen things of each, which then misses what counts.
GtkWidget* NewTickingText(int characters);

// Valid UTF-8. `told`: as a screen reader is to have it, who is told of each change of it and of
// nothing else. Null is left alone.
void SetTickingText(GtkWidget* line, const std::string& text, const std::string& told);
std::string TickingTextOf(GtkWidget* line);
