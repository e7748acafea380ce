// Holds the GDK lock for a scope.
#pragma once

#include <gdk/gdk.h>

// Needed wherever widgets are touched outside GTK's own signal callbacks: GLib timeouts, idles and
// worker threads. The GUI thread holds the lock whenever it runs GTK code, and the lock is not
// recursive: never take it in a signal callback.
class GdkLock {
public:
    GdkLock() { gdk_threads_enter(); }
    ~GdkLock() {
        gdk_flush();  // what was drawn reaches the server before another thread gets the lock
        gdk_threads_leave();
    }
    GdkLock(const GdkLock&) = delete;
    GdkLock& operator=(const GdkLock&) = delete;
};
