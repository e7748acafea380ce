// A scrolling log of time-stamped messages in a dialog; the program's log can show its lines in it
// too (LLog::SetStatusWindow).
#pragma once

#include <gtk/gtk.h>

#include <array>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

#include "foundation/gdk/queued_notify.h"
#include "foundation/log/log.h"
#include "gui/gobject_ref.h"
#include "gui/signal_owner.h"

class LControlHost;

// Destroy it on the GUI thread, after the threads that write to it.
class LStatusWindow final : public LStatusWindowBase, private LThreadQueuedNotify {
public:
    static constexpr std::size_t kMaxLines = 10000;  // older ones make room

    // Uses the text view that the window has under id + 1, which may go before this object; again
    // with another view. GUI thread.
    void Init(LControlHost& window, int id);

    // Any thread. The text is copied and shown later on the GUI thread, with the time of the call.
    // Errors, warnings and information (LLogLevel) have icons; every other kind is indented.
    void DisplayStatus(const char* text, std::uint8_t kind);
    void DisplayStatus(const char* timeText, const char* message, std::uint8_t level) override;

    void SetFontSize(int points);  // of the whole log; 4 to 72, GUI thread

private:
    struct Line {
        std::string time;
        std::string message;
        std::uint8_t kind;
    };
    void EvNotify() override;
    static void GCViewDestroyed(GtkWidget* view, gpointer self);
    void Insert(const Line& line);
    void DropOldLines();

    GtkWidget* view_ = nullptr;                   // owned by its window
    GtkTextMark* end_ = nullptr;                  // owned by the view's buffer
    std::array<GObjectRef<GdkPixbuf>, 3> icons_;  // of the kinds from 1 on
    LSignalOwner signals_;
    std::mutex mutex_;
    std::deque<Line> lines_;  // still to be shown; under the mutex
};
