// Running a program as root after asking the user for the password.
#pragma once

#include <string>
#include <vector>

// The shell command that asks and then runs these words without a display: "kdesu" in a KDE
// session, else "gksu"; "pkexec" where that is not installed. Empty where no program can ask.
// words[0] is a program by its name or whole path.
std::string RootPromptCommand(const std::vector<std::string>& words);

class LWatchedCommand;
// Why a command of this kind failed, in words for the user: its own last ones, unless the prompt
// ended it.
std::string WhyFailed(const LWatchedCommand& run);
