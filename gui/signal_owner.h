// Signal connections that end with their owner.
#pragma once

#include <glib-object.h>

#include <memory>
#include <vector>

#include "gui/callback_count.h"

// A callback connected here is never called once the owner is cleared or gone, whichever of the
// owner and the emitting object goes first. GUI thread.
class LSignalOwner {
public:
    LSignalOwner() = default;
    LSignalOwner(const LSignalOwner&) = delete;
    LSignalOwner& operator=(const LSignalOwner&) = delete;
    ~LSignalOwner() { Clear(); }

    // A callback that the object already has with the same data is not connected again: several
    // registrations may share one callback, which must run once for an event. Gives the handler.
    gulong Connect(gpointer object, const char* signal, GCallback callback, gpointer data,
                   GConnectFlags flags = GConnectFlags(0));
    void Clear();  // ends all connections
    // Which of the callbacks are running; outlives the owner.
    const std::shared_ptr<LCallbackCount>& Callbacks() const { return callbacks_; }

private:
    GClosure* NewClosure(GCallback callback, gpointer data);
    void ForgetDead();

    std::vector<GClosure*> closures_;  // one reference each
    std::shared_ptr<LCallbackCount> callbacks_ = std::make_shared<LCallbackCount>();
};
