// How the decibel slider looks.
#pragma once

#include <gtk/gtk.h>

constexpr int kDBEditHandleWidth = 13;  // pixels

struct LDBEditLook {
    int handle;  // left edge of the handle, pixels
    int unity;   // where it stands at 0 dB
    int level;   // decibels
    bool dragged;
};

// Track, mark at 0 dB, filled part (warm where it amplifies) and handle, in the widget's theme.
void PaintDBEdit(GtkWidget* display, const GdkEventExpose* event, const LDBEditLook& look);
