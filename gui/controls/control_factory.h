// Widgets as the control model expects them.
#pragma once

#include <gtk/gtk.h>

// All return floating widgets, not yet shown.
GtkWidget* NewDropDownList();  // text combo box, column 0 holds the text
GtkWidget* NewComboBox();      // the same with an entry; typed text is allowed
GtkWidget* NewProgressBar();   // whose value assistive programs can follow

struct LEditWidgets {
    GtkWidget* scrolledWindow;  // to be packed
    GtkWidget* textView;        // to be registered; owned by the scrolled window
};
// Multi-line edit: margins of 2 pixels, word wrapping, no horizontal scroll bar. The Tab key leaves
// the field, so that the keyboard is never caught in it.
LEditWidgets NewEdit(bool readOnly, GtkPolicyType verticalScrollBar);
