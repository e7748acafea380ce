#include "desktop/install_console.h"

#include <unistd.h>

#include <cstdio>
#include <string>

#include "desktop/installation.h"
#include "desktop/uninstall_dialog.h"
#include "foundation/threads/end_signals.h"

namespace {

// No where nobody sits at the terminal. Nothing has been done yet: Ctrl+C ends the program at once.
bool AskYesNo(const char* question) {
    if (::isatty(STDIN_FILENO) == 0)
        return false;
    std::printf("%s [y/N] ", question);
    std::fflush(stdout);
    const sigset_t end = EndSignals();
    sigset_t before;
    ::pthread_sigmask(SIG_UNBLOCK, &end, &before);
    char answer[16] = {};
    const bool isAnswered = std::fgets(answer, sizeof answer, stdin) != nullptr;
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return isAnswered && (answer[0] == 'y' || answer[0] == 'Y');
}

bool Tell(const std::string& trouble) {
    if (!trouble.empty())
        std::fprintf(stderr, "lectora: %s\n", trouble.c_str());
    return trouble.empty();
}

class ConsoleTalk : public LUninstallTalk {
public:
    RemovalChoice AskChoice() override {
        RemovalChoice choice;
        choice.machineSettings =
            AskYesNo("Remove the settings that Lectora keeps for all users, too?");
        choice.usersData = AskYesNo("Remove every user's own settings, logs and last speech, too?");
        return choice;
    }
    void TellTrouble(const std::string& trouble) override { Tell(trouble); }
};

}  // namespace

bool RunInstallConsole() {
    const std::string tree = OwnTree();
    if (tree.empty())
        return Tell(kNoTreeText);
    if (IsOwnTreeInPlace()) {
        std::puts("Lectora is installed already.");
        return true;
    }
    if (!Tell(InstallTree(tree, [](const auto&, double) { return !IsEndSignalPending(); })))
        return false;
    std::puts("Lectora is installed. The command \"lectora\" starts it.");
    return true;
}

bool RunUninstallConsole() {
    ConsoleTalk talk;
    if (!UninstallDialog::Uninstall(talk))
        return false;
    std::printf("%s\n\n", UninstallDialog::CompleteText().c_str());
    return true;
}
