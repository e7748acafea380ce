// The files that were loaded last, kept for the next start.
#pragma once

#include <string>
#include <vector>

// Newest first, paths of any length. GUI thread; each operation goes to the user's file of them.
class RecentFiles {
public:
    static constexpr int kMost = 8;

    static std::vector<std::string> List();
    // In front of the others.
    static void Add(const std::string& path);
    static void Remove(const std::string& path);
};
