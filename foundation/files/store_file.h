// Opening what the settings stores keep, so that nobody else can lead the program astray.
//
// A store's folders and files are reached from the home folder, or the machine's root, step by step
// through no link; each is root's or one's own. What is neither is as good as missing. Any thread.
#pragma once

#include <sys/types.h>

#include <string>

#include "foundation/files/unique_fd.h"

// Regular files only. With O_CREAT the missing folders of the store are made as well: by whoever
// writes first. What is made for the machine can be read by everybody (0755, 0644), whatever the
// mask; what is a user's own has the mode that is asked for, less the mask.
UniqueFd OpenStoreFile(const char* path, int flags, mode_t mode = 0666);

// The folder of a store, made with those above it that are missing; the home folder and the
// machine's root must exist. False when it is not there afterwards, or not to be trusted.
bool MakeStoreFolder(const std::string& path);

// Whether nobody but the machine's administrator could have written a file of the machine's: it and
// each folder on the way to it is root's, and nobody else may write there. A machine that stands in
// a folder (LECTORA_ROOT) has the owner of that folder for its root.
bool CouldOnlyRootWrite(const std::string& path);
