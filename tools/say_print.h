// Printing texts in place of speaking them.
#pragma once

#include "tools/say_options.h"

// Prints the jobs' texts in the form that the options ask for, one behind the other; the voice
// counts for TextForm::kSpoken alone. The exit status.
int PrintTexts(const SayOptions& options, int voice);
