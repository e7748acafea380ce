#include "desktop/install_console.h"

#include <unistd.h>

#include <cstdio>
#include <string>

#include "desktop/installation.h"
#include "foundation/hosts.h"
#include "foundation/machine_root.h"

namespace {

bool AskForSettings() {
    if (::isatty(STDIN_FILENO) == 0)
        return false;
    std::fputs("Remove the settings that Lectora keeps for all users, too? [y/N] ", stdout);
    std::fflush(stdout);
    char answer[16] = {};
    return std::fgets(answer, sizeof answer, stdin) != nullptr &&
           (answer[0] == 'y' || answer[0] == 'Y');
}

bool Tell(const std::string& trouble) {
    if (!trouble.empty())
        std::fprintf(stderr, "lectora: %s\n", trouble.c_str());
    return trouble.empty();
}

}  // namespace

bool RunInstallConsole() {
    const std::string tree = OwnTree();
    if (tree.empty())
        return Tell(
            "The files to install are not beside this program. Please run the copy that "
            "stands in an unpacked installation.");
    const std::string root = MachinePath("/");
    if (tree == "/" ? root == "/" : tree + "/" == root) {
        std::puts("Lectora is installed already.");
        return true;
    }
    if (!Tell(InstallTree(tree)))
        return false;
    std::puts("Lectora is installed. The command \"lectora\" starts it.");
    return true;
}

bool UninstallDialog::Uninstall() {
    return Tell(RemoveInstallation(AskForSettings()));
}

void RunUninstallConsole() {
    if (UninstallDialog::Uninstall())
        std::printf(
            "Uninstall is complete. If you need to reinstall this software again you can "
            "download it from %s\n\n",
            WebAddress("").c_str());
}
