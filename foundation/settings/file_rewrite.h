// Rewriting a file in place, as processes that hold it open need it, without ever losing what it
// held.
#pragma once

#include <cstddef>
#include <string_view>

// Files beyond these sizes are refused; nothing that the stores write comes near.
constexpr std::size_t kLargestStoredFile = std::size_t{8} << 20;
constexpr std::size_t kLargestDataFile = std::size_t{16} << 20;
// A settings file may hold an unfinished rewrite too.
constexpr std::size_t kLargestReadableFile = std::size_t{32} << 20;

// Both take the exclusively locked descriptor, its present content and the content to be. What is
// equal is not written; room is reserved before anything is changed, and new content is down before
// the file is cut. False when there is no room or a write failed: the old content then still
// stands.

// For the lines of a data file. A process killed meanwhile leaves the old text, or the new one
// behind lines that other readers ignore.
bool RewriteFile(int fd, std::string_view oldText, std::string_view newText);

// What the content of a data file stands for: itself, or the text of a rewrite that was killed.
std::string_view WholeTextOf(std::string_view content);

// For the lines of a settings file. Also when the process is killed at any moment, the file holds
// every line that was not being changed, and the changed one either as it was or as it shall be.
bool RewriteSettingsLines(int fd, std::string_view oldText, std::string_view newText);
