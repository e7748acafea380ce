// System-wide keys where no program may grab them: the desktop's portal for global shortcuts.
//
// The desktop shows its user which keys are wanted for what, lets him change them, and tells which
// was pressed (org.freedesktop.portal.GlobalShortcuts on the session bus). Nothing here waits for
// it. GUI thread; listeners are called from the main loop, inside the GDK lock, and may not destroy
// this object there.
#pragma once

#include <gio/gio.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

class ShortcutPortal {
public:
    struct Shortcut {
        std::string id;           // what the desktop keeps the user's choice under
        std::string description;  // for the user
        std::string trigger;      // the key that is wanted, as "CTRL+ALT+r"

        bool operator==(const Shortcut&) const = default;
    };
    struct Listener {
        std::function<void()> offered;  // there is such a portal: Bind may be called
        std::function<void()> looked;   // LookFor has ended, whatever it found
        std::function<void()> bound;    // the user has agreed
        std::function<void()> refused;  // or has not
        std::function<void(const std::string& id)> activated;
    };
    explicit ShortcutPortal(Listener listener) : listener_(std::move(listener)) {}
    ~ShortcutPortal();
    ShortcutPortal(const ShortcutPortal&) = delete;
    ShortcutPortal& operator=(const ShortcutPortal&) = delete;

    void LookFor();  // once
    bool IsLooking() const { return isLooking_; }
    // In place of those before, also of refused ones; none gives them up.
    void Bind(std::vector<Shortcut> shortcuts);
    void DoWithout();  // as if the user had refused

    // Whether keys come that way in this session, as far as is known: there is such a portal, and
    // its user has not refused. Any thread.
    static bool GivesKeys();

private:
    enum class Asked { kNothing, kSession, kShortcuts };

    static void GCConnected(GObject* source, GAsyncResult* result, gpointer self);
    static void GCVersion(GObject* source, GAsyncResult* result, gpointer self);
    static void GCAnswered(GObject* source, GAsyncResult* result, gpointer self);
    static void GCSignal(GDBusConnection* connection, const char* sender, const char* path,
                         const char* interface, const char* signal, GVariant* arguments,
                         gpointer self);
    void EvConnected(GDBusConnection* connection);
    void EvResponse(GVariant* arguments);
    void EndLooking();
    void Subscribe(const char* interface, const char* signal);
    void Call(const char* method, Asked asked, GVariant* arguments);
    void CreateSession();
    void BindShortcuts();
    void GiveUp();
    void CloseSession();
    const std::string& NextToken();
    std::string RequestPath() const;

    const Listener listener_;
    GCancellable* cancellable_ = g_cancellable_new();  // of what is asked and not answered yet
    GDBusConnection* connection_ = nullptr;
    std::vector<guint> subscriptions_;
    std::vector<Shortcut> shortcuts_;
    Asked asked_ = Asked::kNothing;
    bool isLooking_ = false;
    bool isThere_ = false;
    std::string session_;  // its path; empty: none
    std::string token_;    // of the request that is answered next
    int tokens_ = 0;
};
