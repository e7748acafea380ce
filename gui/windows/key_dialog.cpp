#include "gui/windows/key_dialog.h"

#include <gdk/gdkkeysyms.h>

namespace {

// GTK's entries cannot undo, but whoever types in one means nothing else by it.
bool IsUndo(LKeyCode key) {
    return key == (kKeyControl | GDK_KEY_Z) || key == (kKeyControl | GDK_KEY_Y) ||
           key == (kKeyControl | kKeyShift | GDK_KEY_Z);
}

bool Writes(const GdkEventKey& event) {
    const gunichar character = gdk_keyval_to_unicode(event.keyval);
    return (event.state & (GDK_CONTROL_MASK | GDK_MOD1_MASK)) == 0 && character != 0 &&
           g_unichar_isprint(character) != FALSE;
}

// What moves the cursor, erases, cuts, copies, pastes or confirms in entries of this type.
bool IsBound(GType type, const GdkEventKey& event) {
    const guint key = gdk_keyval_to_lower(event.keyval);
    const guint modifiers = event.state & gtk_accelerator_get_default_mod_mask();
    for (; g_type_is_a(type, GTK_TYPE_ENTRY) != FALSE; type = g_type_parent(type)) {
        const GtkBindingSet* bindings = gtk_binding_set_find(g_type_name(type));
        const GtkBindingEntry* entry = bindings != nullptr ? bindings->entries : nullptr;
        for (; entry != nullptr; entry = entry->set_next)
            if (entry->keyval == key && guint(entry->modifiers) == modifiers)
                return true;
    }
    return false;
}

// The entry of a list that shows what was chosen there, and nothing that was typed.
bool ShowsChoice(GtkWidget* entry) {
    GtkWidget* list = gtk_widget_get_parent(entry);
    return GTK_IS_COMBO_BOX(list) && gtk_combo_box_get_active(GTK_COMBO_BOX(list)) >= 0;
}

bool MovesByWords(const GdkEventKey& event) {
    const LKeyCode key = KeyCodeOfEvent(event);
    return key == (kKeyControl | GDK_KEY_Left) || key == (kKeyControl | GDK_KEY_Right);
}

// Keys that edit belong to the entry that has the focus, whatever the window does with them
// elsewhere. But nobody moves through the words of a choice.
bool IsEntrysOwnKey(GtkWidget* focus, const GdkEventKey& event) {
    return GTK_IS_ENTRY(focus) && gtk_editable_get_editable(GTK_EDITABLE(focus)) != FALSE &&
           !(MovesByWords(event) && ShowsChoice(focus)) &&
           (IsUndo(KeyCodeOfEvent(event)) || Writes(event) || IsBound(G_OBJECT_TYPE(focus), event));
}

}  // namespace

LKeyDialog& LKeyDialog::DialogOf(gpointer host) {
    return dynamic_cast<LKeyDialog&>(HostOf(host));
}

gboolean LKeyDialog::GCKeyPress(GtkWidget* window, GdkEventKey* event, gpointer host) {
    if (!IsEntrysOwnKey(gtk_window_get_focus(GTK_WINDOW(window)), *event))
        return DialogOf(host).EvKeyDown(KeyCodeOfEvent(*event));
    gtk_window_propagate_key_event(GTK_WINDOW(window), event);
    return TRUE;  // nor an accelerator's
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
