// Changes that are shown and not told.
#pragma once

#include <gtk/gtk.h>

// As long as this lives, nobody is notified of the widget's properties: a screen reader does not
// hear that its text has changed. It reads the new one when it is asked to, and is told of it all
// with the next change. GUI thread; the widget outlives this.
class LUnheardChange {
public:
    explicit LUnheardChange(GtkWidget* widget) : widget_(widget) {
        g_signal_handlers_block_matched(widget_, G_SIGNAL_MATCH_ID, Notify(), 0, nullptr, nullptr,
                                        nullptr);
    }
    ~LUnheardChange() {
        g_signal_handlers_unblock_matched(widget_, G_SIGNAL_MATCH_ID, Notify(), 0, nullptr, nullptr,
                                          nullptr);
    }
    LUnheardChange(const LUnheardChange&) = delete;
    LUnheardChange& operator=(const LUnheardChange&) = delete;

private:
    static guint Notify() { return g_signal_lookup("notify", G_TYPE_OBJECT); }

    GtkWidget* const widget_;
};
