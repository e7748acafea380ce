// Tells other programs when this one has done all that it was asked, so that whoever drives it, a
// script or a test, need not guess how long it takes.
//
// Another program writes a number into the property _LECTORA_TELL_WHEN_IDLE of the window. Once
// what the user did before is done, and no idle callback, short timer or worker is pending, the
// window's property _LECTORA_IDLE holds that number. Sound that plays and the player's pictures are
// not waited for; a text that is still being spoken is. What other programs do is not known.
#pragma once

#include <gtk/gtk.h>

constexpr const char* kTellWhenIdle = "_LECTORA_TELL_WHEN_IDLE";
constexpr const char* kIsIdle = "_LECTORA_IDLE";

// For a top-level window, until it ends. GUI thread.
void AnswerWhenIdle(GtkWidget* window);
