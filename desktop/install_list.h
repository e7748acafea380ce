// The list of what an installation has placed: one path a line, seen from the machine's root; those
// of folders end with "/".
#pragma once

#include <set>
#include <string>

class LInstallList {
public:
    static std::string Path();  // on this machine

    // False when there is none, or it cannot be read.
    bool Load();
    // Writes it beside and names it at the end; 0 or the errno.
    int Save() const;

    void AddFile(const std::string& path) { paths_.insert(path); }
    void AddFolder(const std::string& path) { paths_.insert(path + "/"); }
    bool HasFile(const std::string& path) const { return paths_.contains(path); }
    // A folder comes before what is in it.
    const std::set<std::string>& Paths() const { return paths_; }

private:
    std::set<std::string> paths_;
};
