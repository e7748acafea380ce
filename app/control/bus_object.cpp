#include "app/control/bus_object.h"

#include <unistd.h>

#include <cstdlib>
#include <utility>

#include "app/control/session_bus.h"
#include "foundation/gdk/gdk_lock.h"

bool HasSessionBus() {
    if (std::getenv("DBUS_SESSION_BUS_ADDRESS") != nullptr)
        return true;
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    return folder != nullptr && ::access((std::string(folder) + "/bus").c_str(), R_OK | W_OK) == 0;
}

BusObject::BusObject(const char* path, const char* description, Ways ways)
    : path_(path), description_(description), ways_(std::move(ways)) {}

BusObject::~BusObject() {
    g_cancellable_cancel(cancellable_);
    g_object_unref(cancellable_);
    if (owner_ != 0)
        g_bus_unown_name(owner_);
    for (const guint id : registered_)
        g_dbus_connection_unregister_object(connection_, id);
    if (connection_ != nullptr)
        g_object_unref(connection_);
}

void BusObject::Begin(const char* name) {
    name_ = name;
    if (HasSessionBus())
        g_bus_get(G_BUS_TYPE_SESSION, cancellable_, GCConnected, this);
}

// Of a request that was cancelled the object has gone.
void BusObject::GCConnected(GObject*, GAsyncResult* result, gpointer self) {
    GError* error = nullptr;
    GDBusConnection* connection = g_bus_get_finish(result, &error);
    const ErrorRef owner(error);
    if (connection != nullptr)
        static_cast<BusObject*>(self)->EvConnected(connection);
}

void BusObject::EvConnected(GDBusConnection* connection) {
    const GdkLock lock;
    connection_ = connection;
    // The end of the bus is none of the program's.
    g_dbus_connection_set_exit_on_close(connection_, FALSE);
    static constexpr GDBusInterfaceVTable kCalls = {GCCall, GCGet, GCSet, {}};
    GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(description_, nullptr);
    for (GDBusInterfaceInfo** each = node->interfaces; *each != nullptr; ++each) {
        const guint id = g_dbus_connection_register_object(connection_, path_, *each, &kCalls, this,
                                                           nullptr, nullptr);
        if (id != 0)
            registered_.push_back(id);
    }
    g_dbus_node_info_unref(node);
    OwnName(name_);
    ways_.begun();
}

void BusObject::OwnName(const char* name) {
    owner_ = g_bus_own_name_on_connection(connection_, name, G_BUS_NAME_OWNER_FLAGS_NONE, nullptr,
                                          GCNameLost, this, nullptr);
}

// Another process has it. Not waited for: to whom it would come later has a name by then.
void BusObject::GCNameLost(GDBusConnection* connection, const char* name, gpointer user) {
    auto* self = static_cast<BusObject*>(user);
    if (connection == nullptr || std::string(name) != self->name_)
        return;
    g_bus_unown_name(self->owner_);
    self->OwnName((self->name_ + std::string(".instance") + std::to_string(::getpid())).c_str());
}

void BusObject::EmitSignal(const char* interface, const char* signal, GVariant* arguments) {
    g_variant_ref_sink(arguments);
    if (connection_ != nullptr)
        g_dbus_connection_emit_signal(connection_, nullptr, path_, interface, signal, arguments,
                                      nullptr);
    g_variant_unref(arguments);
}

void BusObject::GCCall(GDBusConnection*, const char*, const char*, const char*, const char* method,
                       GVariant* arguments, GDBusMethodInvocation* invocation, gpointer self) {
    const GdkLock lock;
    if (static_cast<BusObject*>(self)->ways_.call(method, arguments))
        g_dbus_method_invocation_return_value(invocation, nullptr);
    else
        g_dbus_method_invocation_return_error(invocation, G_DBUS_ERROR, G_DBUS_ERROR_FAILED,
                                              "Lectora cannot do that");
}

GVariant* BusObject::GCGet(GDBusConnection*, const char*, const char*, const char*,
                           const char* property, GError** error, gpointer self) {
    const GdkLock lock;
    GVariant* value = static_cast<BusObject*>(self)->ways_.get(property);
    if (value == nullptr)
        g_set_error(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_PROPERTY, "No property %s", property);
    return value;
}

gboolean BusObject::GCSet(GDBusConnection*, const char*, const char*, const char*,
                          const char* property, GVariant* value, GError** error, gpointer self) {
    const GdkLock lock;
    if (static_cast<BusObject*>(self)->ways_.set(property, value))
        return TRUE;
    g_set_error(error, G_DBUS_ERROR, G_DBUS_ERROR_NOT_SUPPORTED, "%s stays as it is", property);
    return FALSE;
}
