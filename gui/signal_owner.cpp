#include "gui/signal_owner.h"

namespace {

GObjectRef<GObject> NewAnchor() {
    return GObjectRef<GObject>::Adopt(static_cast<GObject*>(g_object_new(G_TYPE_OBJECT, nullptr)));
}

}  // namespace

LSignalOwner::LSignalOwner() : anchor_(NewAnchor()) {}

gulong LSignalOwner::Connect(gpointer object, const char* signal, GCallback callback, gpointer data,
                             GConnectFlags flags) {
    const auto function = reinterpret_cast<gpointer>(callback);
    const auto match = GSignalMatchType(G_SIGNAL_MATCH_FUNC | G_SIGNAL_MATCH_DATA);
    const gulong known = g_signal_handler_find(object, match, 0, 0, nullptr, function, data);
    if (known != 0)
        return known;
    GClosure* closure = g_cclosure_new(callback, data, nullptr);
    g_object_watch_closure(anchor_.Get(), closure);
    return g_signal_connect_closure(object, signal, closure, (flags & G_CONNECT_AFTER) != 0);
}

void LSignalOwner::Clear() {
    anchor_ = NewAnchor();
}
