#include "gui/signal_owner.h"

namespace {

using SharedCount = std::shared_ptr<LCallbackCount>;

void GCEnter(gpointer count, GClosure*) {
    (*static_cast<SharedCount*>(count))->Enter();
}

void GCLeave(gpointer count, GClosure*) {
    (*static_cast<SharedCount*>(count))->Leave();
}

void GCForget(gpointer count, GClosure*) {
    delete static_cast<SharedCount*>(count);
}

}  // namespace

GClosure* LSignalOwner::NewClosure(GCallback callback, gpointer data) {
    GClosure* closure = g_closure_ref(g_cclosure_new(callback, data, nullptr));
    g_closure_sink(closure);
    SharedCount* count = std::make_unique<SharedCount>(callbacks_).release();
    g_closure_add_marshal_guards(closure, count, GCEnter, count, GCLeave);
    g_closure_add_finalize_notifier(closure, count, GCForget);
    return closure;
}

// Those whose objects have gone.
void LSignalOwner::ForgetDead() {
    std::erase_if(closures_, [](GClosure* closure) {
        const bool dead = closure->is_invalid != 0 || closure->ref_count == 1;
        if (dead)
            g_closure_unref(closure);
        return dead;
    });
}

gulong LSignalOwner::Connect(gpointer object, const char* signal, GCallback callback, gpointer data,
                             GConnectFlags flags) {
    const auto function = reinterpret_cast<gpointer>(callback);
    const auto match = GSignalMatchType(G_SIGNAL_MATCH_FUNC | G_SIGNAL_MATCH_DATA);
    const gulong known = g_signal_handler_find(object, match, 0, 0, nullptr, function, data);
    if (known != 0)
        return known;
    ForgetDead();
    GClosure* closure = NewClosure(callback, data);
    closures_.push_back(closure);
    return g_signal_connect_closure(object, signal, closure, (flags & G_CONNECT_AFTER) != 0);
}

void LSignalOwner::Clear() {
    for (GClosure* closure : std::exchange(closures_, {})) {
        g_closure_invalidate(closure);
        g_closure_unref(closure);
    }
}
