// One-shot timers by number.
#pragma once

// Timer ids are shared by all handlers of the process: setting an id that another handler uses
// takes the timer over. GUI thread only.
class LTimerHandler {
public:
    LTimerHandler() = default;
    LTimerHandler(const LTimerHandler&) = delete;
    LTimerHandler& operator=(const LTimerHandler&) = delete;
    virtual ~LTimerHandler();  // takes back the timers that would still call this object

    // Called from the main loop with the GDK lock held. A periodic timer sets itself again here.
    virtual void EvTimer(int timerId) = 0;

    void TimerSet(int timerId, unsigned int intervalMs);  // replaces a pending timer of that id
    void TimerReset(int timerId);                         // a pending timer of that id never fires
};
