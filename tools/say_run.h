// What lectora-say does once its command line is understood.
#pragma once

#include "tools/say_options.h"

int RunSay(const SayOptions& options);  // the exit status
