#include "desktop/user_accounts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <string_view>

#include "foundation/files/file_readers.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/text_buffer.h"

namespace {

std::string_view Field(std::string_view line, int index) {
    for (; index > 0; --index) {
        const std::size_t colon = line.find(':');
        line.remove_prefix(colon == std::string_view::npos ? line.size() : colon + 1);
    }
    return line.substr(0, line.find(':'));
}

// Both are numbers of 32 bits; what is none is nobody's.
uid_t NumberOf(std::string_view field) {
    uid_t number = kNoUser;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), number);
    return error == std::errc() && end == field.data() + field.size() ? number : kNoUser;
}

}  // namespace

std::vector<LUserAccount> LGetUsersAccounts() {
    constexpr int kNameField = 0;
    constexpr int kUserField = 2;
    constexpr int kGroupField = 3;
    constexpr int kHomeField = 5;
    std::vector<LUserAccount> accounts;
    const LSharedReadFile file(MachinePath("/etc/passwd").c_str());
    if (!file.IsOpen())
        return accounts;
    LReadFileBuffered lines(file.Fd());
    char line[kTextBufferSize];
    while (lines.ReadLine(line, sizeof line)) {
        const std::string_view home = Field(line, kHomeField);
        if (!Field(line, kNameField).empty())
            accounts.push_back({std::string(Field(line, kNameField)),
                                home.empty() ? std::string() : MachinePath(home),
                                NumberOf(Field(line, kUserField)),
                                NumberOf(Field(line, kGroupField))});
    }
    return accounts;
}

LUserAccount PresentAccount() {
    LUserAccount present{"", HomeFolder(), kNoUser, static_cast<gid_t>(-1)};
    struct stat status = {};
    if (::stat(present.home.c_str(), &status) != 0)
        return present;
    present.user = status.st_uid;
    present.group = status.st_gid;
    for (const LUserAccount& account : LGetUsersAccounts()) {
        if (account.user == present.user)
            present.name = account.name;
    }
    return present;
}

bool LIsUserRoot() {
    // A machine that stands in a folder has whoever may write there for its root.
    const std::string root = MachinePath("");
    return ::geteuid() == 0 ||
           (!root.empty() && ::faccessat(AT_FDCWD, root.c_str(), W_OK, AT_EACCESS) == 0);
}
