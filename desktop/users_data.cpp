#include "desktop/users_data.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "desktop/account_home.h"

namespace {

// Each step goes from an open folder, and the removal of a tree does so as well: none of them leads
// elsewhere, whatever takes a folder's place meanwhile.
UniqueFd FolderIn(int parent, const char* name) {
    return UniqueFd(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool RemoveDataIn(const LHomeFolder& home) {
    for (const char* file : {"speech.wav", ".Lectora.runonce"})
        ::unlinkat(home.Fd(), file, 0);
    const UniqueFd maker = FolderIn(home.Fd(), ".quillon");
    if (!maker.IsOpen())
        return true;
    std::error_code ignored;
    std::filesystem::remove_all("/proc/self/fd/" + std::to_string(maker.Get()) + "/lectora",
                                ignored);
    ::unlinkat(home.Fd(), ".quillon", AT_REMOVEDIR);  // refuses while others are in it
    return true;
}

}  // namespace

void RemoveUsersData() {
    std::vector<LUserAccount> accounts = LGetUsersAccounts();
    accounts.push_back(PresentAccount());  // who may stand in no list
    for (const LUserAccount& account : accounts)
        InHomeOf(account, RemoveDataIn);
}
