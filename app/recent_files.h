// The files that were loaded last, kept for the next start.
#pragma once

#include <string>
#include <vector>

// Newest first. Any thread; each operation goes to the settings.
class RecentFiles {
public:
    static constexpr int kMost = 8;

    static std::vector<std::string> List();
    // In front of the others. A path that the settings cannot hold is left out.
    static void Add(const std::string& path);
    static void Remove(const std::string& path);
};
