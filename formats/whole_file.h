// A file that appears under its name only when it is whole: what was there before stays until then,
// through a crash, a full disk and a power cut.
#pragma once

#include <sys/stat.h>

#include <string>

#include "foundation/files/unique_fd.h"

// The content is written, by whoever, under a temporary name in the same folder, hidden and without
// the extension of a sound file. An existing device is written to directly. A file that is replaced
// hands down its mode and, as far as the user may give it away, its owner.
class WholeFile {
public:
    enum class Existing { kRefuse, kReplace };
    // What killed processes have left beside it. Looking for that takes longer the more files the
    // folder holds.
    enum class Unfinished { kRemove, kLeave };

    // Problem() tells why the file cannot be made; empty when it can.
    WholeFile(const std::string& path, Existing existing,
              Unfinished unfinished = Unfinished::kRemove);
    ~WholeFile();  // takes away what was not committed, as the process's own exit does
    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;

    static constexpr const char* kExists = "exists already";

    const std::string& Problem() const { return problem_; }
    const std::string& WritePath() const { return writePath_; }  // for whoever writes
    bool IsDevice() const { return isDevice_; }
    long long Size() const;  // bytes written so far, -1 when there is nothing

    // Brings the content to the disk and gives it its name; every writer has closed it. Why that
    // failed, or empty.
    std::string Commit();

private:
    void MakeTemporary(const struct stat* replaced, Unfinished unfinished);

    std::string finalPath_;
    std::string writePath_;
    std::string problem_;
    Existing existing_;
    bool isDevice_ = false;
    bool isTemporary_ = false;
    UniqueFd held_;  // a lock on the temporary file, which tells other processes that it is in use
};

// Takes away what killed processes of this user have left of unfinished files in the folder; a
// WholeFile does so in its own unless told otherwise.
void RemoveUnfinishedFiles(const std::string& folder);
