// A start that is only to tell the Lectora that runs what to do.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/start/run_once.h"

// Needs neither display nor toolkit, so that a key of the desktop's acts at once. The exit status,
// once it is answered for; nothing where the command line is no verb's, or a Lectora is to be
// started for it: commandLine then holds what TakeCommandLine made of it.
std::optional<int> AnswerByRunning(int argc, const char* const* argv,
                                   std::vector<std::string>& commandLine);

// What the instance has answered, on the terminal; the exit status. A command line without a verb
// has no answer and is done.
int TellAnswer(const std::vector<std::string>& commandLine, const RunOnceSocket& socket);
