#include "desktop/user_accounts.h"

#include <fcntl.h>
#include <unistd.h>

#include <string_view>

#include "foundation/file_readers.h"
#include "foundation/machine_root.h"
#include "foundation/text_buffer.h"

namespace {

std::string_view Field(std::string_view line, int index) {
    for (; index > 0; --index) {
        const std::size_t colon = line.find(':');
        line.remove_prefix(colon == std::string_view::npos ? line.size() : colon + 1);
    }
    return line.substr(0, line.find(':'));
}

}  // namespace

std::vector<LUserAccount> LGetUsersAccounts() {
    constexpr int kNameField = 0;
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
                                home.empty() ? std::string() : MachinePath(home)});
    }
    return accounts;
}

bool LIsUserRoot() {
    // A machine that stands in a folder has whoever may write there for its root.
    const std::string root = MachinePath("");
    return ::geteuid() == 0 ||
           (!root.empty() && ::faccessat(AT_FDCWD, root.c_str(), W_OK, AT_EACCESS) == 0);
}
