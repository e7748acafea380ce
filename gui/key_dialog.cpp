#include "gui/key_dialog.h"

#include <gdk/gdkkeysyms.h>

namespace {

gboolean GCKeyPress(GtkWidget*, GdkEventKey* event, gpointer dialog) {
    return static_cast<LKeyDialog*>(dialog)->EvKeyDown(KeyCodeOfEvent(*event));
}

}  // namespace

LKeyCode KeyCodeOfEvent(const GdkEventKey& event) {
    const guint modifiers = event.state & (GDK_SHIFT_MASK | GDK_CONTROL_MASK | GDK_MOD1_MASK);
    return (gdk_keyval_to_upper(event.keyval) & 0xFFFFu) | (modifiers << 16);
}

int LKeyDialog::MapKeyToCommand(LKeyCode key) const {
    for (const LKeyToCommandMap& row : keyMap_) {
        if (row.key == key)
            return row.command;
    }
    return 0;
}

bool LKeyDialog::EvKeyDown(unsigned int key) {
    const int command = MapKeyToCommand(key);
    if (command == 0)
        return false;
    DeliverCommand(command);
    return true;
}

void LKeyDialog::HandleKeys(GtkWidget* window) {
    g_signal_connect(window, "key-press-event", G_CALLBACK(GCKeyPress), this);
}

static_assert(GDK_SHIFT_MASK == 1 && GDK_CONTROL_MASK == 4 && GDK_MOD1_MASK == 8);
