// The waveform around the play position.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>

#include "foundation/gdk/queued_notify.h"
#include "foundation/threads/signal_object.h"
#include "foundation/threads/thread.h"
#include "gui/gui_timer.h"
#include "gui/widgets/paint_control.h"
#include "playback/dialogs/play_glide.h"
#include "playback/dialogs/wave_columns.h"
#include "sound/sound_source.h"

// Public operations belong to the GUI thread. The thread of the base class reads the peaks; it
// sleeps unless there is something to scan, or the sound in view may still grow.
class LWaveWindow : public LThread, public LPaintControl, private LThreadQueuedNotify {
public:
    LWaveWindow() = default;
    ~LWaveWindow() override;

    static GtkWidget* CreateControl();  // floating; give it to Attach

    // A source of the view's own: whoever opened it must let go of it, since handles are counted
    // without locks. Stops and starts the thread.
    void SetSource(LSoundSource&& source);
    void LetGo();  // of the source; ends the thread

    // Frames shown from `first` on, that many in a pixel column.
    void SetFrame(std::int64_t first, std::int32_t columnFrames);
    // Where the play line stands, and how many frames behind it are highlighted.
    void SetPosition(std::int64_t position, std::int32_t highlightFrames);
    // Both: two seconds from one second before the position on, or from the start.
    void ShowAround(std::int64_t position, std::int32_t rate, bool isCued);
    // The same while it plays: the picture moves on by itself, at about `pace` frames a second,
    // until it is told nothing more for half a second. Nothing wakes up for a window that is away.
    void MoveOn(std::int64_t position, std::int32_t rate, double pace);

    // Told the frame that the user points at with button 1.
    std::function<void(std::int64_t frame)> seek;

private:
    struct Range {
        int from = 0, to = 0;  // columns; empty when equal
    };
    void ThreadFunction() override;
    bool IsPendingWork() const override { return false; }
    void ScanColumns();
    bool MayGrow();
    void Place(std::int64_t position, std::int32_t rate, bool isCued);
    void ShowNextPicture();
    bool IsOnScreen() const;
    void EvNotify() override;
    void Paint(cairo_t* cairo, const GdkRectangle& dirty) override;
    void PaintColumns(cairo_t* cairo, const GdkRectangle& dirty);
    void EvSize(int width, int height) override;
    bool EvPointer(int x, int y) override;

    LSoundSource source_;    // the thread's while it runs
    LSignalObject changed_;  // there is something new to scan

    std::mutex mutex_;  // guards the next two
    LWaveColumns columns_;
    Range rescanned_;  // not shown yet

    std::int64_t position_ = 0;
    std::int32_t highlight_ = 0;
    std::int32_t rate_ = 0;  // of the last ShowAround; 0 when SetFrame rules
    bool cued_ = false;
    PlayGlide glide_;
    LGuiTimer nextPicture_;
    bool moves_ = false;  // the timer runs
};
