// Acting in an account's home as that account.
//
// Homes are their owners': whatever stands there may be exchanged for a link at any moment. So root
// never acts there as root, and what is reached from a home is reached through no link that leads
// out of it.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "desktop/user_accounts.h"
#include "foundation/files/unique_fd.h"

// A home folder, held open. Paths are seen from it and begin without "/".
class LHomeFolder {
public:
    explicit LHomeFolder(const std::string& path);

    bool IsOpen() const { return folder_.IsOpen(); }
    int Fd() const { return folder_.Get(); }  // borrowed
    UniqueFd OpenFolder(const std::string& path) const;
    bool HasFolder(const std::string& path) const { return OpenFolder(path).IsOpen(); }
    // Regular files only; flags without O_CREAT.
    UniqueFd OpenFile(const std::string& path, int flags) const;
    // The content of a file of at most 64 KiB; empty when it cannot be read.
    std::string ReadText(const std::string& path) const;

private:
    UniqueFd Open(const std::string& path, int flags) const;
    UniqueFd folder_;
};

// The file of that name in an open folder is whole under its name or not there. Without replace,
// one that is there stays. False: it could not be written.
bool PlaceFile(int folder, const char* name, std::string_view content, mode_t mode, bool replace);

using HomeWork = std::function<bool(const LHomeFolder& home)>;

// Does the work as the account: where this process is another's, in a child that has taken the
// account's user and groups, and the mask 022. True when the work says so; false also where this
// process may not become the account, or the home cannot be opened. The work takes no lock and
// writes no log: another thread may hold them while the child comes into being.
bool InHomeOf(const LUserAccount& account, const HomeWork& work);
