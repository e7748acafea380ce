// Whole text files in one step. Any thread.
#pragma once

#include "foundation/files/text_buffer.h"

// Replaces the file's contents; a path that cannot be opened simply yields no file.
void SaveText(const char* path, const char* text);
void SaveText(const char* path, const LStringLongTemplate<char>& text);

// Replaces the text with the whole file. False, with the text as it was, for anything but a
// readable regular file of at most kLargestTextFile bytes.
constexpr long long kLargestTextFile = 256LL << 20;
bool LoadText(const char* path, LStringLongTemplate<char>& text);
