// Descriptor steps shared by everything that reads and writes files.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/files/unique_fd.h"

// Opens close-on-exec; not open for anything but a regular file (a FIFO or a device never makes the
// caller wait). mode is that of a new file, less the
// process's mask.
UniqueFd OpenRegularFile(const char* path, int flags, mode_t mode = 0666);
// The same for reading from its start to its end.
UniqueFd OpenFileForReading(const char* path);

// Reads until size bytes, the end of the file or an error; returns how many arrived. *error, when
// given, is set to the errno of a read that failed and left alone otherwise.
std::size_t ReadFully(int fd, void* buffer, std::size_t size, int* error = nullptr);
// The same at an offset, which leaves the descriptor's position alone.
std::size_t ReadFullyAt(int fd, void* buffer, std::size_t size, std::int64_t offset,
                        int* error = nullptr);

// The file from its start. False on a read error or when it is longer than limit; text then is
// empty.
bool ReadWholeFile(int fd, std::size_t limit, std::string& text);

// Writes everything, through short writes and signals; returns 0, or the errno of the write that
// failed.
int WriteFully(int fd, const void* data, std::size_t size);
int WriteFully(int fd, std::string_view bytes);
int WriteFullyAt(int fd, std::string_view bytes, std::int64_t offset);

std::int64_t FileSize(int fd);  // bytes, 0 when it cannot be told
