#include "desktop/root_prompt.h"

#include <cstdlib>

#include "desktop/shell_words.h"
#include "desktop/watched_command.h"
#include "foundation/processes/child_process.h"

std::string RootPromptCommand(const std::vector<std::string>& words) {
    std::string command;
    for (const std::string& word : words)
        command += (command.empty() ? "" : " ") + ShellQuoted(word);
    const bool inKde = std::getenv("KDE_FULL_SESSION") != nullptr;
    // These two hand the display on, and the program would open a window as root.
    const std::string withoutDisplay = ShellQuoted("env -u DISPLAY " + command);
    if (inKde && IsProgramInstalled("kdesu"))
        return "kdesu -c " + withoutDisplay;
    if (!inKde && IsProgramInstalled("gksu"))
        return "gksu " + withoutDisplay;
    return IsProgramInstalled("pkexec") ? "pkexec " + command : std::string();
}

std::string WhyFailed(const LWatchedCommand& run) {
    // pkexec's: the user closed the prompt; the password was wrong, or nobody could ask for it.
    constexpr int kDismissed = 126;
    constexpr int kNotAuthorized = 127;
    const int status = run.ExitStatus();
    if (status == kDismissed || status == kNotAuthorized || run.LastLine().empty())
        return "The administrator's password was not given, or not accepted.";
    return run.LastLine();
}
