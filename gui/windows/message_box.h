// Message boxes with the program's icon.
#pragma once

#include <gtk/gtk.h>

#include <span>

// Runs a modal box on the GUI thread, with the GDK lock held, and returns the GTK response code
// (Yes -8, No -9, Cancel -6, closed -4). Escape and closing the window answer -4. `parent` may be
// null; `secondary` may be null or empty. Texts are plain, never mark-up.
int MessageBoxRun(GtkWidget* parent, GtkMessageType type, GtkButtonsType buttons, const char* title,
                  const char* primary, const char* secondary);

// The same with buttons of the caller's, the first of which is the default.
struct LBoxButton {
    const char* label;  // "_" marks its letter
    int response;       // 0 and above
};
int MessageBoxRun(GtkWidget* parent, GtkMessageType type, std::span<const LBoxButton> buttons,
                  const char* title, const char* primary, const char* secondary);

// The same with Yes, No and Cancel, of which Cancel is the default.
int MessageBoxRunYesNoCancel(GtkWidget* parent, const char* title, const char* primary,
                             const char* secondary);
