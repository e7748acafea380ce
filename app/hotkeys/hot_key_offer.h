// The question of the first start: whether the user wants a first set of system-wide hotkeys.
#pragma once

#include <functional>

#include "app/window/keyboard_wait.h"
#include "gui/windows/window.h"

// GUI thread. The question goes with this object.
class HotKeyOffer {
public:
    // Asks from the main loop, once in the user's life, unless there are hotkeys already: when the
    // window, which is shown, has the keyboard, or two seconds later where no window manager gives
    // it. After a yes they are stored and taken is called. The window is borrowed; once it is
    // closed, nobody is asked.
    void AskSoon(const LWindow& window, std::function<void()> taken);

private:
    KeyboardWait wait_;
};
