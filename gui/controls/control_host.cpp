#include "gui/controls/control_host.h"

void LControlHost::SetControlID(GtkWidget* control, int id) {
    registry_.Add(control, id);
    g_object_set_data(G_OBJECT(control), "_cmd", GINT_TO_POINTER(id));
}

void LControlHost::SetCompanionID(GtkWidget* companion, int id) {
    registry_.AddYielding(companion, id);
    g_object_set_data(G_OBJECT(companion), "_cmd", GINT_TO_POINTER(id));
}

void LControlHost::DeliverCommand(int command) {
    const LRunningCallback running(signals_.Callbacks());
    const std::weak_ptr<const void> life = Life();
    Command(command);
    if (!life.expired())
        EnableControls();
}

void StoreCommand(gpointer object, const char* key, int command, int id) {
    g_object_set_data(G_OBJECT(object), key, GINT_TO_POINTER(command < 0 ? id : command));
}

int StoredCommand(gpointer object, const char* key) {
    return GPOINTER_TO_INT(g_object_get_data(G_OBJECT(object), key));
}

void DeliverStored(gpointer host, gpointer object, const char* key) {
    HostOf(host).DeliverCommand(StoredCommand(object, key));
}

gulong LControlHost::Connect(gpointer object, const char* signal, GCallback callback,
                             GConnectFlags flags) {
    return signals_.Connect(object, signal, callback, this, flags);
}

void LControlHost::ForgetControls() {
    registry_.Clear();
    signals_.Clear();
}
