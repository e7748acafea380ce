// The parts of a path as the system has it: of any length, and "/" alone separates. LFile's
// operations on paths of 259 bytes stand in file.h.
#pragma once

#include <string>
#include <string_view>

std::string FileOfPath(std::string_view path);
// "" for a path without a "/", "/" for one right below the root.
std::string FolderOfPath(std::string_view path);
// From the last dot of the file part on, that dot included; a hidden file's first dot begins none.
std::string EndingOfPath(std::string_view path);
