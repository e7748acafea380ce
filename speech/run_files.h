// The temporary files of the engine's runs: a text for the engine, and the sound that it writes.
//
// The sound file's name holds that of its text file, so that both can be told from anybody else's
// and removed when the program that made them could not.
#pragma once

#include <string>
#include <string_view>

constexpr const char* kRunTextFolder = "/tmp/";

// With its slash; "./" for a name alone.
std::string FolderOf(std::string_view path);

// A new private file "/tmp/0XXXXXX"; empty when it cannot be made.
std::string MakeRunTextFile();

// A new private file ".speech0XXXXXX-YYYYYY.wav" in the folder (which ends in a slash) for the run
// of that text file; empty when it cannot be made.
std::string MakeRunSoundFile(const std::string& folder, const std::string& textPath);

// A new private file beside that sound file, for the times of its words; empty when it cannot be
// made.
std::string MakeRunTimesFile(const std::string& soundPath);

// Removes what runs of this user left in the folder and have not touched for ten minutes, thirty
// times what a run may take. Looks once for each folder in a process; any thread.
void RemoveFilesOfDeadRuns(const std::string& folder);
