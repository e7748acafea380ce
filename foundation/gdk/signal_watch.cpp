#include "foundation/gdk/signal_watch.h"

#include <glib-unix.h>

#include <utility>

#include "foundation/gdk/gdk_lock.h"

void LSignalWatch::Start(LSignalObjectRef signal, std::function<void()> call) {
    Stop();
    call_ = std::move(call);
    const auto signalled = [](gint, GIOCondition, gpointer user) -> gboolean {
        const GdkLock lock;
        auto* watch = static_cast<LSignalWatch*>(user);
        watch->source_ = 0;
        const std::function<void()> now = std::exchange(watch->call_, nullptr);
        now();
        return G_SOURCE_REMOVE;
    };
    source_ = g_unix_fd_add(signal.ReadFd(), G_IO_IN, signalled, this);
}

void LSignalWatch::Stop() {
    if (source_ != 0)
        g_source_remove(std::exchange(source_, 0U));
}
