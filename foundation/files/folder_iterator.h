// Iteration over the entries of a folder, "." and ".." left out, in the order that the file system
// gives.
#pragma once

#include <dirent.h>

#include <memory>
#include <string>

#include "foundation/files/file.h"

// One thread. Not open for what is not a readable folder: then there are no entries.
class LFile::FolderIterator {
public:
    // Shell wildcards; "*" takes names beginning with a dot too. Without a pattern, every name.
    bool Open(const char* folder, const char* pattern);
    bool Open(const char* folder);
    // Goes to the next entry that matches; false at the end.
    bool SkipToMatch();

    const char* Name() const { return name_.c_str(); }  // of the present entry
    std::string Path() const;                           // with the folder in front
    bool IsFolder() const;                              // also a link to one

private:
    struct Closer {
        void operator()(DIR* stream) const { closedir(stream); }
    };
    std::unique_ptr<DIR, Closer> stream_;
    std::string folder_;
    std::string pattern_;
    bool hasPattern_ = false;
    std::string name_;
};

class LFile::FolderIteratorAllFiles : public LFile::FolderIterator {
public:
    bool Open(const char* folder) { return FolderIterator::Open(folder); }
    bool Next() { return SkipToMatch(); }
};
