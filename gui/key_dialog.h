// A window that turns key presses into commands through a table.
#pragma once

#include <cstdint>
#include <span>

#include "gui/dialog.h"

// Bits 0-15: upper-cased GDK key value; bits 16-31: modifiers.
using LKeyCode = std::uint32_t;
constexpr LKeyCode kKeyShift = 1u << 16;
constexpr LKeyCode kKeyControl = 4u << 16;
constexpr LKeyCode kKeyAlt = 8u << 16;

struct LKeyToCommandMap {
    LKeyCode key;
    int command;
};

class LKeyDialog : public LDialog {
public:
    // Every key press of the window, before the focused control sees it; true takes the key away
    // from the control. The default sends the mapped command.
    virtual bool EvKeyDown(unsigned int key);

    // The table is borrowed and must outlive the window.
    void SetKeyMap(std::span<const LKeyToCommandMap> map) { keyMap_ = map; }
    // The command of a key code, or 0.
    int MapKeyToCommand(LKeyCode key) const;

protected:
    void HandleKeys(GtkWidget* window);  // connects the key handlers

private:
    std::span<const LKeyToCommandMap> keyMap_;
};

// The key code of a key event; the other modifiers (Caps Lock and the like) do not count.
LKeyCode KeyCodeOfEvent(const GdkEventKey& event);
