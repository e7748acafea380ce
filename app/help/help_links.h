// What this program adds to the Help menu: what helps on this computer, and links to the maker's
// pages where there are such pages.
#pragma once

#include "gui/windows/window.h"

class LHelpLinks {
public:
    // Appends them to the window's Help menu, which stands last in its menu bar.
    static void SetUp(LWindow& window);
    static constexpr int kFirst = 9021;  // the numbers that are for these links
    static constexpr int kLast = 9039;
    static void Open(int command);  // in the browser; of no link: nothing
};
