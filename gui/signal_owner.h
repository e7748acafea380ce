// Signal connections that end with their owner.
#pragma once

#include <glib-object.h>

#include "gui/gobject_ref.h"

// A callback connected here is never called once the owner is cleared or gone, whichever of the
// owner and the emitting object goes first. GUI thread.
class LSignalOwner {
public:
    LSignalOwner();

    // A callback that the object already has with the same data is not connected again: several
    // registrations may share one callback, which must run once for an event. Gives the handler.
    gulong Connect(gpointer object, const char* signal, GCallback callback, gpointer data,
                   GConnectFlags flags = GConnectFlags(0));
    void Clear();  // ends all connections

private:
    GObjectRef<GObject> anchor_;  // closures watch it and become invalid with it
};
