// The level meter: one bar a channel, falling smoothly, with a mark at each channel's peak.
#pragma once

#include <gtk/gtk.h>

#include "sound/level.h"

// All operations take the widget that CreateControl gave; others are left alone. GUI thread only.
// The meter wakes the program only while something in it moves and can be seen.
class LDBDisplay {
public:
    static GtkWidget* CreateControl();  // floating; as many bars as levels are set, first one
    static void SetLevels(GtkWidget* meter, const LDBMC& levels);
    static LDBMC GetLevels(GtkWidget* meter);  // as last set
};
