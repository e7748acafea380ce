// Keys as numbers, and tables that turn them into commands: one form for key presses, menu
// accelerators and what tooltips say of them.
#pragma once

#include <gdk/gdk.h>

#include <cstdint>
#include <span>
#include <string>

// Bits 0-15: upper-cased GDK key value; bits 16-31: modifiers, and the mark of a media key.
using LKeyCode = std::uint32_t;
constexpr LKeyCode kKeyShift = 1u << 16;
constexpr LKeyCode kKeyControl = 4u << 16;
constexpr LKeyCode kKeyAlt = 8u << 16;
constexpr LKeyCode kKeySuper = 64u
                               << 16;  // of system-wide hotkeys only: KeyCodeOfEvent leaves it out

// A media key, or another of the keys that makers add: their values have this above bits 0-15.
constexpr LKeyCode kKeyMedia = 0x4000u << 16;
constexpr guint kMediaValues = 0x10080000u;

struct LKeyToCommandMap {
    LKeyCode key;
    int command;
};
using LKeyMap = std::span<const LKeyToCommandMap>;

// The key code of a key event; the other modifiers (Caps Lock and the like) do not count. With
// Control or Alt, a letter of another script counts as the Latin one on the same key.
LKeyCode KeyCodeOfEvent(const GdkEventKey& event);

int CommandOfKey(LKeyMap map, LKeyCode key);      // of the first row with this key; 0 for none
LKeyCode KeyOfCommand(LKeyMap map, int command);  // of the first row with this command; 0 for none

inline guint KeyValue(LKeyCode key) {
    return (key & 0xFFFFu) | ((key & kKeyMedia) != 0 ? kMediaValues : 0);
}
inline GdkModifierType KeyModifiers(LKeyCode key) {
    return GdkModifierType((key & ~kKeyMedia) >> 16);
}

// "Super+Ctrl+Alt+Shift+" as far as set, then GDK's name of the key value: "Ctrl+Shift+R". The name
// is empty when GDK has none.
std::string LKeyGetDescription(LKeyCode key);
