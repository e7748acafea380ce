// The volume slider: whole decibels from -32 to +16, set by pointer, wheel, keys, program, or in a
// small text entry beside it.
#pragma once

#include <gtk/gtk.h>

#include "sound/level.h"

// Emitted on the box for every change that the user makes with pointer, wheel or keys, and for
// Enter in the entry; the integer is the level's index above the lowest level. Windows connect by
// this name, so its spelling stays.
constexpr const char* kVolumeChangeSignal = "volumn-change-event";

// All operations take the horizontal box; its children are found by widget name: "display", the
// drawing area that also holds the state as object data, and "text", the optional entry. GUI
// thread only.
class LDBEdit {
public:
    static GtkWidget* CreateControl();        // floating, with slider and entry
    static GtkWidget* CreateSimpleControl();  // floating, slider only

    // Wires a box; a box without a "display" child cannot be wired. The command is kept on the box
    // under "_cmd". Wiring again changes the command only.
    static void Init(int command, GtkWidget* box);

    static void SetLevel(GtkWidget* box, LDB level);  // clamped to the range; never notifies
    static LDB GetLevel(GtkWidget* box);
    static GtkWidget* GetHandle(GtkWidget* box, bool text);  // null when there is none

    // What a screen reader calls slider and entry.
    static void SetName(GtkWidget* box, const char* name);
};
