// How a user chooses the sound card, and is told of its mixer.
#pragma once

#include <gtk/gtk.h>

#include "gui/windows/window.h"
#include "playback/play_device.h"

// Fills the pull-down list with "Default Sound Device", the name of every card that has one, and
// the sound server, and selects the device; the default where its card is not there.
void LSoundPlayDeviceInit(LWindow& dialog, int controlId, LSoundPlayDevice device);
// What is selected there. "Default Sound Device" is card 0.
LSoundPlayDevice LSoundPlayDeviceChosen(const LWindow& dialog, int controlId);
// Does nothing: the options dialog reads the chosen entry itself.
void LSoundPlayDeviceApply(LWindow& dialog, int controlId, LSoundPlayDevice device);
// In a box when the mixer could not be opened. `parent` may be null.
void LSoundPlayDeviceTell(GtkWidget* parent, LSoundPlayDevice device, MixerResult result);
