// What screen readers are told about a widget.
#pragma once

#include <gtk/gtk.h>

// The name that a screen reader speaks for the widget; the text is copied. The entry of a combo box
// is what takes the focus, so it gets the name too.
void SetAccessibleName(GtkWidget* widget, const char* name);

// Makes the label speak for the widget: label-for relation, mnemonic target and accessible name.
void LabelWidget(GtkWidget* label, GtkWidget* widget);
