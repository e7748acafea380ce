// Descriptor steps shared by everything that reads and writes whole files.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "foundation/unique_fd.h"

// Opens close-on-exec; not open for anything but a regular file (a FIFO or a device never makes the
// caller wait).
UniqueFd OpenRegularFile(const char* path, int flags, mode_t mode = 0);

// The file from its start. False on a read error or when it is longer than limit; text then is
// empty.
bool ReadWholeFile(int fd, std::size_t limit, std::string& text);

// All of it or false; survives short writes and signals.
bool WriteAll(int fd, std::string_view bytes);
bool WriteAllAt(int fd, std::string_view bytes, off_t offset);
