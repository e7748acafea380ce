// An object that this program offers on the desktop's session bus.
#pragma once

#include <gio/gio.h>

#include <functional>
#include <string>
#include <vector>

// Where there is no bus, or it goes, nothing happens. Nothing here waits for it. GUI thread; what
// is asked for is called from the main loop, inside the GDK lock.
class BusObject {
public:
    // Values are floating variants, of the types that the description gives.
    struct Ways {
        std::function<bool(const std::string& method, GVariant* arguments)> call;
        std::function<GVariant*(const std::string& property)> get;
        std::function<bool(const std::string& property, GVariant* value)> set;
        std::function<void()> begun;  // it is there now
    };
    // description: of its interfaces, in D-Bus's XML. Texts are borrowed.
    BusObject(const char* path, const char* description, Ways ways);
    ~BusObject();
    BusObject(const BusObject&) = delete;
    BusObject& operator=(const BusObject&) = delete;

    // Once. Where another process has the name, the process's number is put behind it.
    void Begin(const char* name);
    bool IsThere() const { return connection_ != nullptr; }
    // arguments: floating. To everybody; nothing while it is not there.
    void EmitSignal(const char* interface, const char* signal, GVariant* arguments);

private:
    static void GCConnected(GObject* source, GAsyncResult* result, gpointer self);
    static void GCNameLost(GDBusConnection* connection, const char* name, gpointer self);
    static void GCCall(GDBusConnection* connection, const char* sender, const char* path,
                       const char* interface, const char* method, GVariant* arguments,
                       GDBusMethodInvocation* invocation, gpointer self);
    static GVariant* GCGet(GDBusConnection* connection, const char* sender, const char* path,
                           const char* interface, const char* property, GError** error,
                           gpointer self);
    static gboolean GCSet(GDBusConnection* connection, const char* sender, const char* path,
                          const char* interface, const char* property, GVariant* value,
                          GError** error, gpointer self);
    void EvConnected(GDBusConnection* connection);
    void OwnName(const char* name);

    const char* const path_;
    const char* const description_;
    const Ways ways_;
    const char* name_ = nullptr;
    GCancellable* const cancellable_ = g_cancellable_new();
    GDBusConnection* connection_ = nullptr;
    std::vector<guint> registered_;
    guint owner_ = 0;  // of the name; 0: none
};
