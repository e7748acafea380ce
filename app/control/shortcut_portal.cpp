#include "app/control/shortcut_portal.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "app/control/session_bus.h"
#include "foundation/gdk/gdk_lock.h"
#include "foundation/log/log.h"

namespace {

constexpr const char* kPortalName = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kShortcutsInterface = "org.freedesktop.portal.GlobalShortcuts";
constexpr const char* kRequestInterface = "org.freedesktop.portal.Request";
constexpr const char* kSessionInterface = "org.freedesktop.portal.Session";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

constexpr guint32 kRefused = 1;  // by the user; 0: granted, 2: something else was in the way

std::atomic<bool>& PortalGivesKeys() {
    static std::atomic<bool> gives{false};
    return gives;
}

// The text under the name in a dictionary, which some portals give as a path.
std::string TextIn(GVariant* dictionary, const char* name) {
    const VariantRef value(g_variant_lookup_value(dictionary, name, nullptr));
    const bool isText = value && (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING) ||
                                  g_variant_is_of_type(value.get(), G_VARIANT_TYPE_OBJECT_PATH));
    return isText ? g_variant_get_string(value.get(), nullptr) : "";
}

GVariant* Options(const std::vector<std::pair<const char*, std::string>>& texts) {
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    for (const auto& [name, text] : texts)
        g_variant_builder_add(&options, "{sv}", name, g_variant_new_string(text.c_str()));
    return g_variant_builder_end(&options);
}

}  // namespace

bool ShortcutPortal::GivesKeys() {
    return PortalGivesKeys();
}

ShortcutPortal::~ShortcutPortal() {
    CloseSession();
    g_cancellable_cancel(cancellable_);
    g_object_unref(cancellable_);
    for (const guint id : subscriptions_)
        g_dbus_connection_signal_unsubscribe(connection_, id);
    if (connection_ != nullptr)
        g_object_unref(connection_);
}

void ShortcutPortal::LookFor() {
    isLooking_ = HasSessionBus();
    if (isLooking_)
        g_bus_get(G_BUS_TYPE_SESSION, cancellable_, GCConnected, this);
}

void ShortcutPortal::EndLooking() {
    isLooking_ = false;
    listener_.looked();
}

// Of a request that was cancelled the object has gone, here and below.
void ShortcutPortal::GCConnected(GObject*, GAsyncResult* result, gpointer self) {
    GError* error = nullptr;
    GDBusConnection* connection = g_bus_get_finish(result, &error);
    const ErrorRef owner(error);
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE)
        return;
    const GdkLock lock;
    if (connection != nullptr)
        static_cast<ShortcutPortal*>(self)->EvConnected(connection);
    else
        static_cast<ShortcutPortal*>(self)->EndLooking();
}

void ShortcutPortal::EvConnected(GDBusConnection* connection) {
    connection_ = connection;
    g_dbus_connection_set_exit_on_close(connection_, FALSE);
    g_dbus_connection_call(connection_, kPortalName, kPortalPath, kProperties, "Get",
                           g_variant_new("(ss)", kShortcutsInterface, "version"),
                           G_VARIANT_TYPE("(v)"), G_DBUS_CALL_FLAGS_NONE, -1, cancellable_,
                           GCVersion, this);
}

void ShortcutPortal::GCVersion(GObject* source, GAsyncResult* result, gpointer user) {
    GError* error = nullptr;
    const VariantRef answer(
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error));
    const ErrorRef owner(error);
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE)
        return;
    const GdkLock lock;
    auto* self = static_cast<ShortcutPortal*>(user);
    if (answer) {
        self->Subscribe(kRequestInterface, "Response");
        self->Subscribe(kShortcutsInterface, "Activated");
        self->isThere_ = PortalGivesKeys() = true;
        self->listener_.offered();
    }
    self->EndLooking();
}

void ShortcutPortal::Subscribe(const char* interface, const char* signal) {
    subscriptions_.push_back(g_dbus_connection_signal_subscribe(
        connection_, kPortalName, interface, signal, nullptr, nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
        GCSignal, this, nullptr));
}

void ShortcutPortal::Bind(std::vector<Shortcut> shortcuts) {
    if (!isThere_)
        return;
    PortalGivesKeys() = true;
    GiveUp();
    shortcuts_ = std::move(shortcuts);
    if (!shortcuts_.empty() && asked_ == Asked::kNothing)
        CreateSession();
}

void ShortcutPortal::DoWithout() {
    GiveUp();
    PortalGivesKeys() = false;
}

// A session that is on its way takes what is wanted once it is here, or is closed then.
void ShortcutPortal::GiveUp() {
    CloseSession();
    shortcuts_.clear();
    if (asked_ == Asked::kShortcuts)
        asked_ = Asked::kNothing;
}

// A session takes shortcuts once.
void ShortcutPortal::CloseSession() {
    if (!session_.empty())
        g_dbus_connection_call(connection_, kPortalName, session_.c_str(), kSessionInterface,
                               "Close", nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
                               nullptr, nullptr);
    session_.clear();
}

const std::string& ShortcutPortal::NextToken() {
    return token_ = "lectora" + std::to_string(++tokens_);
}

// Known beforehand, so that no answer comes too early to be heard.
std::string ShortcutPortal::RequestPath() const {
    std::string sender = g_dbus_connection_get_unique_name(connection_) + 1;
    std::ranges::replace(sender, '.', '_');
    return std::string(kPortalPath) + "/request/" + sender + "/" + token_;
}

void ShortcutPortal::CreateSession() {
    const std::string token = NextToken();
    Call("CreateSession", Asked::kSession,
         g_variant_new("(@a{sv})",
                       Options({{"handle_token", token}, {"session_handle_token", token}})));
}

void ShortcutPortal::BindShortcuts() {
    GVariantBuilder shortcuts;
    g_variant_builder_init(&shortcuts, G_VARIANT_TYPE("a(sa{sv})"));
    for (const Shortcut& each : shortcuts_)
        g_variant_builder_add(
            &shortcuts, "(s@a{sv})", each.id.c_str(),
            Options({{"description", each.description}, {"preferred_trigger", each.trigger}}));
    Call("BindShortcuts", Asked::kShortcuts,
         g_variant_new("(oa(sa{sv})s@a{sv})", session_.c_str(), &shortcuts, "",
                       Options({{"handle_token", NextToken()}})));
}

void ShortcutPortal::Call(const char* method, Asked asked, GVariant* arguments) {
    asked_ = asked;
    // What the portal says of a request that nobody waits for any more counts no longer.
    g_cancellable_cancel(cancellable_);
    g_object_unref(cancellable_);
    cancellable_ = g_cancellable_new();
    g_dbus_connection_call(connection_, kPortalName, kPortalPath, kShortcutsInterface, method,
                           arguments, G_VARIANT_TYPE("(o)"), G_DBUS_CALL_FLAGS_NONE, -1,
                           cancellable_, GCAnswered, this);
}

// The answer itself comes as a signal, once the user has decided.
void ShortcutPortal::GCAnswered(GObject* source, GAsyncResult* result, gpointer user) {
    GError* error = nullptr;
    const VariantRef answer(
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error));
    const ErrorRef owner(error);
    if (answer || g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE)
        return;
    LOGWARNF("The desktop gives no keys: %s", error->message);
    const GdkLock lock;
    static_cast<ShortcutPortal*>(user)->asked_ = Asked::kNothing;
    PortalGivesKeys() = false;
}

void ShortcutPortal::GCSignal(GDBusConnection*, const char*, const char* path, const char*,
                              const char* signal, GVariant* arguments, gpointer user) {
    const GdkLock lock;
    auto* self = static_cast<ShortcutPortal*>(user);
    if (std::string(signal) == "Response") {
        if (self->asked_ != Asked::kNothing && path == self->RequestPath() &&
            g_variant_is_of_type(arguments, G_VARIANT_TYPE("(ua{sv})")) != FALSE)
            self->EvResponse(arguments);
        return;
    }
    const char* session = nullptr;
    const char* id = nullptr;
    if (g_variant_is_of_type(arguments, G_VARIANT_TYPE("(osta{sv})")) == FALSE)
        return;
    g_variant_get(arguments, "(&o&sta{sv})", &session, &id, nullptr, nullptr);
    if (session == self->session_)
        self->listener_.activated(id);
}

void ShortcutPortal::EvResponse(GVariant* arguments) {
    guint32 response = 0;
    GVariant* given = nullptr;
    g_variant_get(arguments, "(u@a{sv})", &response, &given);
    const VariantRef results(given);
    const Asked asked = std::exchange(asked_, Asked::kNothing);
    if (response != 0) {
        LOGWARNF("The desktop gives no keys: its user refused, or it failed (%u)", response);
        DoWithout();
        if (response == kRefused)
            listener_.refused();
    } else if (asked == Asked::kShortcuts) {
        listener_.bound();
    } else if (session_ = TextIn(results.get(), "session_handle"); shortcuts_.empty()) {
        CloseSession();
    } else if (!session_.empty()) {
        BindShortcuts();
    }
}
