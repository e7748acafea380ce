// Numbered images from the program's share folder.
#pragma once

#include <gtk/gtk.h>

#include "gui/gobject_ref.h"
#include "gui/icon_numbers.h"

// Empty when the file is missing or unreadable.
GObjectRef<GdkPixbuf> LoadIcon(int number);

// For faces that need another size than the number's own: drawn for that size where there is such a
// drawing, scaled otherwise.
GObjectRef<GdkPixbuf> LoadIconAt(int number, int pixels);

// A missing icon leaves the window without one.
void SetWindowIcon(GtkWindow* window, int number);

// A new image widget (floating), empty when the file is missing.
GtkWidget* NewIconImage(int number);
GtkWidget* NewIconImageAt(int number, int pixels);
