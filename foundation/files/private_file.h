// Small files of the user's own beside his settings: for him alone (mode 0600), and only ever
// whole. Any thread, one at a time for each name.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Where a file of that name stands; its folders are there afterwards.
std::string PrivateFilePath(const char* name);
// Puts the content in place of what was there, which stays until all of it is written. 0 or the
// errno. Does not wait for the disk: a power cut may bring the former content back.
int WritePrivateFile(const char* name, std::string_view content);
// False, and content is empty: there is none, it has more than `most` bytes, or it is not a regular
// file of this user's.
bool ReadPrivateFile(const char* name, std::size_t most, std::string& content);
void RemovePrivateFile(const char* name);
