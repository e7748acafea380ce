// Modes of new files and folders: those that are asked for, less the mask that the process was
// started with. Any thread.
#pragma once

#include <sys/types.h>

// The mask, for modes that are given to what exists already. Read before main(), because reading it
// takes it away for a moment.
mode_t StartMask();

// True when the folder was not there before.
bool MakeFolder(const char* path);
