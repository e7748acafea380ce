// Who plays on a card.
#pragma once

#include <string>

// The name of the program that holds the card's playback, as the kernel tells; empty when it does
// not. Reads files only; any thread. `kernelFolder` is where the kernel shows its processes.
std::string CardHolder(int card, const std::string& kernelFolder = "/proc");
