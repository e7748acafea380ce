// How ALSA is asked for a card.
#pragma once

#include <string>

// "hw:N". Also keeps the ALSA library from writing its own complaints to standard error: errors are
// told by return values, and asking for cards that are not there is nothing worth a message.
std::string CardDevice(int card);
