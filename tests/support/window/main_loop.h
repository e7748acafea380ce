// Turns of the main loop, for tests of windows.
#pragma once

#include <gtk/gtk.h>

#include <functional>

inline void PumpPending() {
    while (gtk_events_pending())
        gtk_main_iteration_do(FALSE);
}

// Runs the main loop until `done` or the time is up; true when done.
inline bool PumpUntil(const std::function<bool()>& done, int milliseconds = 10000) {
    const gint64 end = g_get_monotonic_time() + gint64{1000} * milliseconds;
    while (!done()) {
        if (g_get_monotonic_time() > end)
            return false;
        PumpPending();
        g_usleep(2000);
    }
    return true;
}
