// A label that opens a web page.
#pragma once

#include <gtk/gtk.h>

// A new link (floating): underlined text in the theme's link colour, with the address as tooltip.
// A click, Enter or Space opens the address in the desktop's browser.
GtkWidget* NewHyperLink(const char* text, const char* address);

// Nothing for a widget that is no such link.
void SetHyperLink(GtkWidget* link, const char* text, const char* address);
