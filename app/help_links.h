// The Help menu's links to the maker's pages about this program.
#pragma once

#include "gui/window.h"

class LHelpLinks {
public:
    // Appends them to the window's Help menu, which stands last in its menu bar.
    static void SetUp(LWindow& window);
    static bool Open(int command);  // in the browser; false: not a link's command
};
