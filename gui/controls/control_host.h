// What every family of controls stands on: controls by number, and commands.
//
// A family is a class derived virtually from LControlHost that adds the operations and
// registrations of one kind of control; LWindow is all families together. A new kind of control is
// one more file pair and one more base of LWindow.
#pragma once

#include <gtk/gtk.h>

#include <memory>

#include "gui/controls/control_registry.h"
#include "gui/signal_owner.h"

constexpr int kUseControlId = -1;  // for Handle...: the command is the control id

class LControlHost {
public:
    LControlHost() = default;
    LControlHost(const LControlHost&) = delete;
    LControlHost& operator=(const LControlHost&) = delete;
    virtual ~LControlHost() = default;

    virtual void EnableControls() {}  // after every command delivered from a control
    virtual void Command(int) {}

    // The newest registration of an id hides older ones; a destroyed control is forgotten.
    void SetControlID(GtkWidget* control, int id);
    // For the label or frame of a control, which goes under the control's number + 1: a control of
    // that number hides it, whichever came first.
    void SetCompanionID(GtkWidget* companion, int id);
    GtkWidget* GetControlByID(int id) const { return registry_.Find(id); }

    // Command, then EnableControls; Command may delete this object.
    void DeliverCommand(int command);
    // The way of menu and tool bar commands, some of which are the toolkit's own.
    virtual void WMCommand(int command) { DeliverCommand(command); }
    // True when the command was taken as a dialog's answer and is no command.
    virtual bool TakeAnswer(int) { return false; }

protected:
    // Expires with this object: callbacks ask it after calling out.
    std::weak_ptr<const void> Life() const { return life_; }

    template <typename T>
    T* ControlAs(int id, GType type) const {
        GtkWidget* control = GetControlByID(id);
        return G_TYPE_CHECK_INSTANCE_TYPE(control, type) ? reinterpret_cast<T*>(control) : nullptr;
    }
    // The callback gets this object, as LControlHost*, for its data, and is gone with it.
    gulong Connect(gpointer object, const char* signal, GCallback callback,
                   GConnectFlags flags = GConnectFlags(0));
    virtual GtkWidget* TopWidget() const { return nullptr; }  // the window; null while closed
    virtual GtkAccelGroup* Accelerators() const { return nullptr; }  // of the window; may be null
    LControlRegistry& Registry() { return registry_; }
    LSignalOwner& Signals() { return signals_; }
    void ForgetControls();  // the window is gone, or goes on without this object

private:
    LControlRegistry registry_;
    LSignalOwner signals_;
    const std::shared_ptr<const void> life_ = std::make_shared<char>();
};

// --- For families, whose C callbacks are free functions.

// Keeps the command on the object under the key; kUseControlId stands for the id.
void StoreCommand(gpointer object, const char* key, int command, int id);
int StoredCommand(gpointer object, const char* key);  // 0 for none
void DeliverStored(gpointer host, gpointer object, const char* key);
inline LControlHost& HostOf(gpointer host) {
    return *static_cast<LControlHost*>(host);
}
