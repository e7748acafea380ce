// What screen readers are told about a widget.
#pragma once

#include <gtk/gtk.h>

// The name that a screen reader speaks for the widget; the text is copied. The entry of a combo box
// is what takes the focus, so it gets the name too.
void SetAccessibleName(GtkWidget* widget, const char* name);

// Has a screen reader say the name when the focus comes into the box from elsewhere.
void SetPanelName(GtkWidget* box, const char* name);

// Has a screen reader say the text, wherever the focus is: for what is news to the user and shown
// where the focus does not go. The text is copied.
void TellScreenReader(GtkWidget* widget, const char* text);

// A screen reader says each new value of what has the focus. Not so of this widget, whose value
// goes on by itself; it is still told to whoever asks. Once, after the widget has its name.
void KeepValueQuiet(GtkWidget* widget);

// Once, before the first window: tells a screen reader where the focus is again and again for some
// seconds. The program starts faster than a screen reader comes to listen on a busy machine, and
// what has the focus by then would never be said. Costs nothing where nobody can listen. GUI
// thread.
void TellFocusToLateScreenReader();

// Makes the label speak for the widget: label-for relation, mnemonic target and accessible name.
void LabelWidget(GtkWidget* label, GtkWidget* widget);
