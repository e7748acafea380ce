// The orders that the rows of a list view can be put in.
#pragma once

#include "gui/controls/list_view_columns.h"

// Below 0, 0 or above, as the first text stands before, with or behind the second.
int CompareListTexts(LListSort order, const char* first, const char* second);
