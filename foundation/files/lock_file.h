// A lock file that marks a running instance.
#pragma once

#include <string>

#include "foundation/files/unique_fd.h"

// Held until Unlock(), destruction (both remove the file) or the end of the process.
class LLockFile {
public:
    LLockFile() = default;
    LLockFile(const LLockFile&) = delete;
    LLockFile& operator=(const LLockFile&) = delete;
    ~LLockFile() { Unlock(); }

    // The lock file is path with its extension replaced by ".lck", or path itself when it has none.
    // Releases a lock held before. False when the file cannot be opened, another process holds it,
    // or it has no such extension and is not empty.
    bool Lock(const char* path);
    void Unlock();
    bool IsLocked() const { return file_.IsOpen(); }

private:
    UniqueFd file_;
    std::string path_;
    bool isOurs_ = false;  // an empty file that was there before stays there
};
