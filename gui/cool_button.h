// Image-and-text buttons with a pressed look.
#pragma once

#include <gtk/gtk.h>

enum class LCoolButtonKind {
    kPush,    // a click sends the command and the button comes back up
    kUpDown,  // a click also turns the pressed look over
};

// Wires a GtkToggleButton: image `imageNumber` (none when negative) beside `text`, which is also
// its accessible name. A click calls `clicked(data, command)`; SetCoolButtonDown and
// SetCoolButtonUp never do. A push button that the program has put down stays down across clicks.
void InitCoolButton(GtkToggleButton* button, LCoolButtonKind kind, int imageNumber,
                    const char* text, int command, void (*clicked)(void* data, int command),
                    void* data);

// Changes the pressed look without a command.
void SetCoolButtonState(GtkToggleButton* button, bool down);
