#include "gui/windows/timer_handler.h"

#include <forward_list>

#include "foundation/gdk/gdk_lock.h"

namespace {

struct Timer {
    int id;
    int tag;  // GLib source; -1 when none was set since the last reset
    LTimerHandler* handler;
};

std::forward_list<Timer>& Timers() {
    static std::forward_list<Timer> timers;
    return timers;
}

Timer* FindTimer(int id) {
    for (Timer& timer : Timers()) {
        if (timer.id == id)
            return &timer;
    }
    return nullptr;
}

// A tag stays listed after its source has fired, so that the source may be gone already.
void RemoveSource(Timer& timer) {
    if (timer.tag >= 1) {
        const auto tag = static_cast<guint>(timer.tag);
        if (g_main_context_find_source_by_id(nullptr, tag) != nullptr)
            g_source_remove(tag);
    }
    timer.tag = -1;
}

gboolean GCTimer(gpointer) {
    const int tag = static_cast<int>(g_source_get_id(g_main_current_source()));
    const GdkLock lock;
    for (const Timer& timer : Timers()) {
        if (timer.tag == tag) {
            timer.handler->EvTimer(timer.id);
            break;
        }
    }
    return FALSE;
}

}  // namespace

LTimerHandler::~LTimerHandler() {
    for (Timer& timer : Timers()) {
        if (timer.handler == this) {
            RemoveSource(timer);
            timer.handler = nullptr;
        }
    }
}

void LTimerHandler::TimerSet(int timerId, unsigned int intervalMs) {
    Timer* timer = FindTimer(timerId);
    if (timer != nullptr) {
        RemoveSource(*timer);
    } else {
        Timers().push_front({timerId, -1, this});
        timer = &Timers().front();
    }
    timer->handler = this;
    timer->tag = static_cast<int>(g_timeout_add(intervalMs, GCTimer, this));
}

void LTimerHandler::TimerReset(int timerId) {
    if (Timer* timer = FindTimer(timerId))
        RemoveSource(*timer);
}
