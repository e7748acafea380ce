#include "gui/key_dialog.h"

LKeyDialog& LKeyDialog::DialogOf(gpointer host) {
    return dynamic_cast<LKeyDialog&>(HostOf(host));
}

gboolean LKeyDialog::GCKeyPress(GtkWidget*, GdkEventKey* event, gpointer host) {
    return DialogOf(host).EvKeyDown(KeyCodeOfEvent(*event));
}

gboolean LKeyDialog::GCKeyRelease(GtkWidget*, GdkEventKey* event, gpointer host) {
    return DialogOf(host).EvKeyUp(KeyCodeOfEvent(*event));
}

void LKeyDialog::WidgetAttached(GtkWidget* widget) {
    Connect(widget, "key-press-event", G_CALLBACK(GCKeyPress));
    Connect(widget, "key-release-event", G_CALLBACK(GCKeyRelease));
}

bool LKeyDialog::MapKeyToCommand(LKeyCode key, LKeyMap map) {
    const int command = CommandOfKey(map, key);
    if (command == 0)
        return false;
    DeliverCommand(command);
    return true;
}

bool LKeyDialog::EvKeyDown(unsigned int key) {
    return MapKeyToCommand(key, keyMap_) || CheckMenuAccelerators(key);
}
