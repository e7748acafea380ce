#include "gui/menus/key_map.h"

#include <gdk/gdkkeysyms.h>

#include <string_view>

static_assert(GDK_SHIFT_MASK == 1 && GDK_CONTROL_MASK == 4 && GDK_MOD1_MASK == 8);

namespace {

constexpr guint kHighestLatinValue = 0xFF;

bool IsLetterOfAnotherScript(guint value) {
    const gunichar letter = gdk_keyval_to_unicode(value);
    return g_unichar_isalpha(letter) != FALSE &&
           g_unichar_get_script(letter) != G_UNICODE_SCRIPT_LATIN;
}

// What the key is in the keyboard's Latin layout; without one, what it is now.
guint LatinValue(const GdkEventKey& event) {
    guint* values = nullptr;
    GdkKeymapKey* keys = nullptr;
    gint count = 0;
    guint found = event.keyval;
    gdk_keymap_get_entries_for_keycode(gdk_keymap_get_default(), event.hardware_keycode, &keys,
                                       &values, &count);
    for (gint at = count - 1; at >= 0; --at) {
        if (keys[at].level == 0 && values[at] != 0 && values[at] <= kHighestLatinValue)
            found = values[at];
    }
    g_free(keys);
    g_free(values);
    return found;
}

}  // namespace

LKeyCode KeyCodeOfEvent(const GdkEventKey& event) {
    const guint modifiers = event.state & (GDK_SHIFT_MASK | GDK_CONTROL_MASK | GDK_MOD1_MASK);
    // Who writes Russian or Greek presses Ctrl+O by the same key as in the Latin layout.
    const bool isCommand = (modifiers & (GDK_CONTROL_MASK | GDK_MOD1_MASK)) != 0;
    const guint value =
        isCommand && IsLetterOfAnotherScript(event.keyval) ? LatinValue(event) : event.keyval;
    const LKeyCode media = (value & ~0xFFFFu) == kMediaValues ? kKeyMedia : 0;
    return (gdk_keyval_to_upper(value) & 0xFFFFu) | (modifiers << 16) | media;
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
    if ((key & kKeySuper) != 0)
        text += "Super+";
    if ((key & kKeyControl) != 0)
        text += "Ctrl+";
    if ((key & kKeyAlt) != 0)
        text += "Alt+";
    if ((key & kKeyShift) != 0)
        text += "Shift+";
    const char* name = gdk_keyval_name(KeyValue(key));
    const std::string_view word = name != nullptr ? name : "";
    constexpr std::string_view kMaker = "XF86";  // of media keys, which says nothing to users
    text += word.substr(word.starts_with(kMaker) ? kMaker.size() : 0);
    return text;
}
