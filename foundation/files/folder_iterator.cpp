#include "foundation/files/folder_iterator.h"

#include <fnmatch.h>
#include <sys/stat.h>

bool LFile::FolderIterator::Open(const char* folder, const char* pattern) {
    const bool opened = Open(folder);
    pattern_ = pattern;
    hasPattern_ = true;
    return opened;
}

bool LFile::FolderIterator::Open(const char* folder) {
    stream_.reset(opendir(folder));
    folder_ = folder;
    hasPattern_ = false;
    name_.clear();
    return stream_ != nullptr;
}

bool LFile::FolderIterator::SkipToMatch() {
    while (const dirent* entry = stream_ ? readdir(stream_.get()) : nullptr) {
        name_ = entry->d_name;
        if (name_ == "." || name_ == "..")
            continue;
        if (!hasPattern_ || fnmatch(pattern_.c_str(), name_.c_str(), 0) == 0)
            return true;
    }
    name_.clear();
    return false;
}

std::string LFile::FolderIterator::Path() const {
    const bool hasSeparator = folder_.empty() || folder_.back() == '/';
    return folder_ + (hasSeparator ? "" : "/") + name_;
}

bool LFile::FolderIterator::IsFolder() const {
    struct stat status = {};
    return stat(Path().c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}
