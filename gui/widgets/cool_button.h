// Image-and-text buttons with a pressed look.
#pragma once

#include <gtk/gtk.h>

#include <functional>

enum class LCoolButtonKind {
    kPush,      // a click sends the command and the button comes back up
    kDropDown,  // the same, and an arrow at the right edge sends the second command
    kUpDown,    // held: the command when it goes down, the second command when it comes up
};

struct LCoolButtonCommands {
    int command;
    int second = 0;  // not of push buttons
};

// Wires a GtkToggleButton: image `imageNumber` (none when negative) beside `text`, which is also
// its accessible name; an empty text leaves the image alone and the name as it is. The user's acts
// call `send`; SetCoolButtonState never does. A button that the program has put down
// stays down across clicks. A held button sends its second command once for each first one, however
// the holding ends: released, hidden, made insensitive, or the focus lost. Space and Enter hold it
// too, Down drops a menu down.
void InitCoolButton(GtkToggleButton* button, LCoolButtonKind kind, int imageNumber,
                    const char* text, LCoolButtonCommands commands,
                    std::function<void(int command)> send);

// Of the images that it gets from then on; 32 unless set.
void SetCoolButtonImageSize(GtkToggleButton* button, int pixels);

// Changes the pressed look without a command. From then on it is a toggle button to a screen
// reader, which tells the look when the focus comes to it, but not each change: what a press does
// says enough. Any other is a push button.
void SetCoolButtonState(GtkToggleButton* button, bool down);
