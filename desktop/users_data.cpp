#include "desktop/users_data.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>
#include <system_error>

#include "desktop/user_accounts.h"
#include "foundation/machine_root.h"
#include "foundation/unique_fd.h"

namespace {

// Root works in folders whose owners may exchange them for links meanwhile: each step goes from an
// open folder, and the removal of a tree does so as well.
UniqueFd FolderIn(const UniqueFd& parent, const char* name) {
    return UniqueFd(::openat(parent.Get(), name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

void RemoveDataIn(const UniqueFd& homeFolder) {
    for (const char* file : {"speech.wav", ".Lectora.runonce"})
        ::unlinkat(homeFolder.Get(), file, 0);
    const UniqueFd maker = FolderIn(homeFolder, ".quillon");
    if (!maker.IsOpen())
        return;
    std::error_code ignored;
    std::filesystem::remove_all("/proc/self/fd/" + std::to_string(maker.Get()) + "/lectora",
                                ignored);
    ::unlinkat(homeFolder.Get(), ".quillon", AT_REMOVEDIR);  // refuses while others are in it
}

void RemoveEmptyFoldersIn(const UniqueFd& homeFolder) {
    const UniqueFd maker = FolderIn(homeFolder, ".quillon");
    const UniqueFd program = FolderIn(maker, "lectora");
    ::unlinkat(program.Get(), "Logs", AT_REMOVEDIR);
    ::unlinkat(maker.Get(), "lectora", AT_REMOVEDIR);
    ::unlinkat(homeFolder.Get(), ".quillon", AT_REMOVEDIR);
}

// Of every account, and of whoever runs this.
void InEachHome(void (*act)(const UniqueFd& homeFolder)) {
    std::set<std::string> homes{HomeFolder()};
    for (const LUserAccount& account : LGetUsersAccounts()) {
        if (!account.home.empty())
            homes.insert(account.home);
    }
    for (const std::string& home : homes) {
        const UniqueFd folder(::open(home.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (folder.IsOpen())
            act(folder);
    }
}

}  // namespace

void RemoveUsersData() {
    InEachHome(RemoveDataIn);
}

void RemoveUsersEmptyFolders() {
    InEachHome(RemoveEmptyFoldersIn);
}
