// One text into its sound file, into numbered files, or onto standard output.
#pragma once

#include <string>

#include "tools/say_options.h"

// Speaks the text with the voice; the engine writes into workFolder (with its slash). Tells on
// standard error what went wrong, and what was left out. The exit status.
int SayText(const SayOptions& options, const SayJob& job, const Document& document, int voice,
            const std::string& workFolder);
