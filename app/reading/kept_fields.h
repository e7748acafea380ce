// Private files that are lists of texts.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Each text ends with a zero byte: the one that no text holds. Empty where there is no such file.
std::vector<std::string> ReadKeptFields(const char* name);
int WriteKeptFields(const char* name, const std::vector<std::string>& fields);  // 0 or the errno
std::size_t NumberOfField(const std::string& field);  // 0 where it is none
