// A folder for what a program has to keep while it runs.
#pragma once

#include <string>

// For its user alone; taken away with all that is in it, also what an engine left there.
class WorkFolder {
public:
    explicit WorkFolder(const std::string& program);  // below $TMPDIR, or /tmp
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    bool IsMade() const { return !path_.empty(); }  // errno tells why not
    std::string Path() const { return path_ + "/"; }

private:
    std::string path_;
};
