// The user's pronunciation list, told of when it cannot be kept.
#pragma once

#include <gtk/gtk.h>

#include <vector>

#include "speech/pronunciation_file.h"

bool KeepPronunciations(GtkWidget* parent, const std::vector<Pronunciation>& entries);
