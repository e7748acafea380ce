// Waits for a signal in the main loop instead of in a call.
#pragma once

#include <functional>

#include "foundation/threads/signal_object.h"

// GUI thread. One wait at a time; it ends with this object.
class LSignalWatch {
public:
    LSignalWatch() = default;
    LSignalWatch(const LSignalWatch&) = delete;
    LSignalWatch& operator=(const LSignalWatch&) = delete;
    ~LSignalWatch() { Stop(); }

    // Calls once from the main loop, inside the GDK lock, when the signal is there: also when it is
    // there already. The call may start the watch again or delete its owner. The signal must
    // outlive the wait.
    void Start(LSignalObjectRef signal, std::function<void()> call);
    void Stop();
    bool IsWaiting() const { return source_ != 0; }

private:
    unsigned int source_ = 0;  // GLib source, 0 when none
    std::function<void()> call_;
};
