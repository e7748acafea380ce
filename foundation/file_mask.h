// Modes of new files and folders.
//
// The program runs with an empty file-creation mask, because its machine-wide folder is shared by
// all users. Everything else that it makes, under the user's home or where the user said, keeps to
// the mask it was started with, and so do its children. Any thread.
#pragma once

#include <sys/types.h>

// The process's mask as it was before main().
mode_t StartMask();

// What open() or mkdir() is to be given for this path: the mode itself under the machine-wide
// folder, elsewhere less the mask of the start.
mode_t CreationMode(const char* path, mode_t mode);

// mkdir() with CreationMode(path, 0777). True when the folder was not there before.
bool MakeFolder(const char* path);
