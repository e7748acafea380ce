#include "gui/key_map.h"

#include <gdk/gdkkeysyms.h>

static_assert(GDK_SHIFT_MASK == 1 && GDK_CONTROL_MASK == 4 && GDK_MOD1_MASK == 8);

LKeyCode KeyCodeOfEvent(const GdkEventKey& event) {
    const guint modifiers = event.state & (GDK_SHIFT_MASK | GDK_CONTROL_MASK | GDK_MOD1_MASK);
    return (gdk_keyval_to_upper(event.keyval) & 0xFFFFu) | (modifiers << 16);
}

int CommandOfKey(LKeyMap map, LKeyCode key) {
    for (const LKeyToCommandMap& row : map) {
        if (row.key == key)
            return row.command;
    }
    return 0;
}

LKeyCode KeyOfCommand(LKeyMap map, int command) {
    for (const LKeyToCommandMap& row : map) {
        if (row.command == command)
            return row.key;
    }
    return 0;
}

std::string LKeyGetDescription(LKeyCode key) {
    std::string text;
    if ((key & kKeyControl) != 0)
        text += "Ctrl+";
    if ((key & kKeyAlt) != 0)
        text += "Alt+";
    if ((key & kKeyShift) != 0)
        text += "Shift+";
    const char* name = gdk_keyval_name(KeyValue(key));
    return text + (name != nullptr ? name : "");
}
