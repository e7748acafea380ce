// A one-shot callback on the GUI thread that ends with its owner.
#pragma once

#include <glib.h>

#include <functional>
#include <utility>

#include "foundation/gdk/gdk_lock.h"

// GUI thread. The callback holds the GDK lock and may start the timer again or delete its owner.
class LGuiTimer {
public:
    LGuiTimer() = default;
    LGuiTimer(const LGuiTimer&) = delete;
    LGuiTimer& operator=(const LGuiTimer&) = delete;
    ~LGuiTimer() { Stop(); }

    void Start(guint milliseconds, std::function<void()> callback) {
        Stop();
        callback_ = std::move(callback);
        source_ = g_timeout_add(milliseconds, GCTimer, this);
    }
    bool IsRunning() const { return source_ != 0; }
    void Stop() {
        if (source_ != 0)
            g_source_remove(std::exchange(source_, 0));
    }

private:
    static gboolean GCTimer(gpointer self) {
        const GdkLock lock;
        auto* timer = static_cast<LGuiTimer*>(self);
        timer->source_ = 0;
        const std::function<void()> callback = std::exchange(timer->callback_, nullptr);
        callback();
        return FALSE;
    }

    guint source_ = 0;  // GLib source, 0 when none
    std::function<void()> callback_;
};
