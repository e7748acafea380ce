// How ALSA is asked for a card.
#pragma once

#include <string>

// ALSA's name for the user's sound server, or for whatever else the machine was set up to play on.
constexpr char kSoundServer[] = "default";

// "hw:N".
std::string CardDevice(int card);

// Keeps the ALSA library from writing its own complaints to standard error: errors are told by
// return values, and asking for cards that are not there is nothing worth a message. Before any
// other use of it.
void QuietAlsa();
