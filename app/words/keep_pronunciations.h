// The user's pronunciation list, told of when it cannot be read or kept.
#pragma once

#include <gtk/gtk.h>

#include <string>

#include "speech/pronunciation_file.h"

// Why the list cannot be read, in a sentence; empty when it was.
std::string ReadingProblem(const PronunciationList& list);

bool KeepPronunciations(GtkWidget* parent, const PronunciationList& list);
