// SIGTERM, SIGINT and SIGHUP: the end that another program, Ctrl+C or the end of the session asks
// for.
#pragma once

#include <glib.h>

#include "foundation/files/unique_fd.h"

// The program then ends as by its own "Exit", without the question: open dialogs are cancelled,
// work under a progress dialog is stopped, and the main loop ends. Every thread blocks all signals;
// these are read from a descriptor, so that the end is ordinary work of the GUI thread. A signal
// that was ignored when the program was started stays ignored, as under nohup.
//
// A further SIGTERM or SIGINT ends the process at once. SIGHUP never does: a session that ends
// sends it right behind SIGTERM, and a terminal that is closed sends it twice.
//
// One in a process; GUI thread.
class OrderlyEnd {
public:
    OrderlyEnd();  // all signals are blocked already
    ~OrderlyEnd();
    OrderlyEnd(const OrderlyEnd&) = delete;
    OrderlyEnd& operator=(const OrderlyEnd&) = delete;

    // Once everything else is tidied up: ends the process by the signal that came; returns when
    // none has.
    void EndProcess();

private:
    void ReadSignals();
    static gboolean GCSignal(gint fd, GIOCondition condition, gpointer self);
    static gboolean GCEndLoops(gpointer self);

    UniqueFd signals_;
    int number_ = 0;      // of the signal that came; 0: none
    guint watch_ = 0;     // source on the descriptor; 0 once a signal has come
    guint endLoops_ = 0;  // source, from then on
};
