#include "playback/dialogs/wave_window.h"

#include <algorithm>
#include <cmath>

#include "gui/accessible.h"
#include "gui/widgets/theme_paint.h"

namespace {

constexpr int kPriority = -5;          // behind the player's thread
constexpr unsigned int kLookMs = 100;  // how often a growing sound is looked at
constexpr int kHighlightMs = 25;
constexpr unsigned int kPictureMs = 33;
constexpr int kFullPeak = 255;
constexpr int kSilentPeak = 1;  // drawn as a thin line: sound, but nothing to hear
constexpr GdkColor kClipping{0, 0xD6D6, 0x4545, 0x4545};

// Dark themes select in dark colours, which hardly stand out from their ground as thin lines.
GdkColor WaveColor(const GtkStyle* style) {
    const GdkColor& selected = style->bg[GTK_STATE_SELECTED];
    return IsDarkGround(style->base[GTK_STATE_NORMAL])
               ? MixColors(selected, style->text[GTK_STATE_NORMAL], 0.4)
               : selected;
}

}  // namespace

LWaveWindow::~LWaveWindow() {
    StopThreadSoon();
    Join();
}

GtkWidget* LWaveWindow::CreateControl() {
    GtkWidget* area = gtk_drawing_area_new();
    gtk_widget_set_size_request(area, 200, 64);
    SetAccessibleName(area, "Waveform");
    atk_object_set_role(gtk_widget_get_accessible(area), ATK_ROLE_DRAWING_AREA);
    return area;
}

void LWaveWindow::LetGo() {
    StopThreadSoon();
    Join();
    source_.Close();
}

void LWaveWindow::SetSource(LSoundSource&& source) {
    LetGo();
    source_ = source;
    source.Close();
    {
        const std::lock_guard lock(mutex_);
        columns_.Forget();
    }
    Invalidate();
    changed_.Signal();
    Start(kPriority);
}

void LWaveWindow::SetFrame(std::int64_t first, std::int32_t columnFrames) {
    const LWaveFrame wanted{first, columnFrames, std::min(Width(), LWaveColumns::kMost)};
    {
        const std::lock_guard lock(mutex_);
        if (columns_.Frame() == wanted)
            return;
        columns_.ScrollFrame(wanted);
    }
    Invalidate();
    changed_.Signal();
}

void LWaveWindow::SetPosition(std::int64_t position, std::int32_t highlightFrames) {
    if (position == position_ && highlightFrames == highlight_)
        return;
    position_ = position;
    highlight_ = highlightFrames;
    Invalidate();
}

void LWaveWindow::ShowAround(std::int64_t position, std::int32_t rate, bool isCued) {
    nextPicture_.Stop();
    moves_ = false;
    glide_.Rest(static_cast<double>(position));
    Place(position, rate, isCued);
}

void LWaveWindow::MoveOn(std::int64_t position, std::int32_t rate, double pace) {
    rate_ = std::max(rate, 1);
    glide_.Told(static_cast<double>(position), pace, PlayGlide::Time::clock::now());
    if (!moves_)
        ShowNextPicture();
}

void LWaveWindow::ShowNextPicture() {
    const PlayGlide::Time now = PlayGlide::Time::clock::now();
    moves_ = glide_.IsMoving(now) && IsOnScreen();
    Place(std::max<std::int64_t>(0, std::llround(glide_.At(now))), rate_, false);
    if (moves_)
        nextPicture_.Start(kPictureMs, [this] { ShowNextPicture(); });
}

bool LWaveWindow::IsOnScreen() const {
    if (Area() == nullptr || gtk_widget_get_mapped(Area()) == FALSE)
        return false;
    GdkWindow* top = gtk_widget_get_window(gtk_widget_get_toplevel(Area()));
    return (gdk_window_get_state(top) &
            (GDK_WINDOW_STATE_ICONIFIED | GDK_WINDOW_STATE_WITHDRAWN)) == 0;
}

void LWaveWindow::Place(std::int64_t position, std::int32_t rate, bool isCued) {
    rate_ = std::max(rate, 1);
    cued_ = isCued;
    const int columns = std::max(1, std::min(Width(), LWaveColumns::kMost));
    const auto columnFrames =
        static_cast<std::int32_t>(std::max<std::int64_t>(1, std::int64_t{2} * rate_ / columns));
    // On whole columns, so that the picture scrolls and is not scanned anew, under a line that
    // stands.
    const std::int64_t column = position / columnFrames - rate_ / columnFrames;
    SetFrame(std::max<std::int64_t>(0, column) * columnFrames, columnFrames);
    SetPosition(position, isCued ? rate_ * kHighlightMs / 1000 : 0);
}

void LWaveWindow::ThreadFunction() {
    while (!IsStopping()) {
        changed_.Reset();
        ScanColumns();
        if (!MayGrow()) {
            ProcessWaitSignalForever(*this, changed_.Ref());
        } else if (ProcessWaitSignal(*this, changed_.Ref(), kLookMs) == kProcessFailed) {
            source_->WaitForStreamingData(0);
        }
    }
}

// Asks the source only on its own thread.
bool LWaveWindow::MayGrow() {
    if (!source_->IsStreaming())
        return false;
    const std::int64_t end = source_->GetEndSample();
    const std::lock_guard lock(mutex_);
    return columns_.Frame().FirstOf(columns_.Frame().columns) > end;
}

void LWaveWindow::ScanColumns() {
    const bool grows = source_->IsStreaming();
    const std::int64_t end = source_->GetEndSample();
    for (int from = 0; !IsStopping();) {
        LWaveFrame frame;
        int column = 0;
        {
            const std::lock_guard lock(mutex_);
            frame = columns_.Frame();
            column = columns_.NextToScan(from, end);
        }
        if (column >= frame.columns)
            return;
        const LWaveColumn scanned = ScanWaveColumn(*source_, frame, column, end, grows);
        const std::lock_guard lock(mutex_);
        if (columns_.Frame() != frame) {
            from = 0;  // scrolled meanwhile: what was read belongs to another column
            continue;
        }
        columns_.Store(column, scanned);
        const bool isFirst = rescanned_.from == rescanned_.to;
        rescanned_.from = isFirst ? column : std::min(rescanned_.from, column);
        rescanned_.to = isFirst ? column + 1 : std::max(rescanned_.to, column + 1);
        if (isFirst)
            QueueNotify();
        from = column + 1;
    }
}

void LWaveWindow::EvNotify() {
    Range range;
    {
        const std::lock_guard lock(mutex_);
        std::swap(range, rescanned_);
    }
    Invalidate(range.from, range.to - range.from);
}

void LWaveWindow::EvSize(int, int) {
    if (rate_ > 0) {
        Place(position_, rate_, cued_);
        return;
    }
    LWaveFrame frame;
    {
        const std::lock_guard lock(mutex_);
        frame = columns_.Frame();
    }
    SetFrame(frame.first, frame.columnFrames);
}

bool LWaveWindow::EvPointer(int x, int) {
    if (!seek)
        return false;
    std::int64_t frame = 0;
    {
        const std::lock_guard lock(mutex_);
        const int columns = columns_.Frame().columns;
        frame = columns_.Frame().FirstOf(std::clamp(x, 0, std::max(0, columns - 1)));
    }
    seek(frame);
    return true;
}

void LWaveWindow::Paint(cairo_t* cairo, const GdkRectangle& dirty) {
    const GtkStyle* style = gtk_widget_get_style(Area());
    SetPaintColor(cairo, style->base[GTK_STATE_NORMAL]);
    cairo_paint(cairo);
    PaintColumns(cairo, dirty);
    LWaveFrame frame;
    {
        const std::lock_guard lock(mutex_);
        frame = columns_.Frame();
    }
    const double line =
        std::floor(static_cast<double>(position_ - frame.first) / frame.columnFrames);
    if (highlight_ > 0) {
        cairo_rectangle(cairo, line, 0, std::max(2, highlight_ / frame.columnFrames), Height());
        SetPaintColor(cairo, style->bg[GTK_STATE_SELECTED], 0.4);
        cairo_fill(cairo);
    }
    cairo_rectangle(cairo, line, 0, 2, Height());
    SetPaintColor(cairo, style->text[GTK_STATE_NORMAL]);
    cairo_fill(cairo);
}

// Wave, clipping, and the ground where there is no sound: one path each.
void LWaveWindow::PaintColumns(cairo_t* cairo, const GdkRectangle& dirty) {
    const GtkStyle* style = gtk_widget_get_style(Area());
    const double middle = Height() / 2.0;
    const auto add = [&](bool (*wanted)(const LWaveColumn&)) {
        const std::lock_guard lock(mutex_);
        const int right = std::min(dirty.x + dirty.width, columns_.Frame().columns);
        for (int x = std::max(0, dirty.x); x < right; ++x) {
            const LWaveColumn& column = columns_.At(x);
            if (!wanted(column))
                continue;
            const double half =
                column.HasSound() ? std::max(0.5, (middle - 2) * column.peak / kFullPeak) : middle;
            cairo_rectangle(cairo, x, middle - half, 1, 2 * half);
        }
    };
    add([](const LWaveColumn& c) { return c.state == LWaveColumn::State::kPastEnd; });
    SetPaintColor(cairo,
                  MixColors(style->base[GTK_STATE_NORMAL], style->text[GTK_STATE_NORMAL], 0.12));
    cairo_fill(cairo);
    add([](const LWaveColumn& c) { return c.HasSound() && c.peak <= kSilentPeak; });
    SetPaintColor(cairo, style->text_aa[GTK_STATE_NORMAL]);
    cairo_fill(cairo);
    add([](const LWaveColumn& c) { return c.HasSound() && c.peak > kSilentPeak && !c.clips; });
    SetPaintColor(cairo, WaveColor(style));
    cairo_fill(cairo);
    add([](const LWaveColumn& c) { return c.HasSound() && c.clips; });
    SetPaintColor(cairo, kClipping);
    cairo_fill(cairo);
}
