// A drawing area that screen readers know as a control with a value.
#pragma once

#include <gtk/gtk.h>

// What a screen reader may ask of the value, and do to it.
struct LAreaValue {
    double lowest;
    double highest;
    double (*get)(GtkWidget* area);
    void (*set)(GtkWidget* area, double value);  // null when only the program changes it
};

// A new drawing area (floating). `value` must outlive it: make it a constant.
GtkWidget* NewValueArea(AtkRole role, const LAreaValue& value);

// Lets a screen reader speak the new value.
void TellValueChanged(GtkWidget* area);
