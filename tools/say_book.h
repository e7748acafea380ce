// One document as an audiobook.
#pragma once

#include <string>

#include "documents/document.h"
#include "tools/say_options.h"

// The engine writes into workFolder (with its slash). Tells on standard error what went wrong and
// what was left out. The exit status.
int SayBook(const SayOptions& options, const SayJob& job, const Document& document, int voice,
            const std::string& workFolder);
