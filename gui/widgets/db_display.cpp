#include "gui/widgets/db_display.h"

#include <algorithm>
#include <memory>

#include "gui/accessible.h"
#include "gui/widgets/meter_ballistics.h"
#include "gui/widgets/paint_control.h"
#include "gui/widgets/theme_paint.h"
#include "gui/widgets/value_area.h"

namespace {

constexpr const char* kMeterKey = "level-meter";
constexpr guint kFrameMs = 33;
constexpr int kWarm = 6;  // decibels: louder than speech is meant to be
constexpr int kHot = 11;  // about full scale for a sine
constexpr double kGap = 2;

struct LStopColor {
    int level;
    double red, green, blue;
};
// One ramp for the eye's whole scale: the place in the bar gives the colour.
constexpr LStopColor kRamp[] = {{LMeterBallistics::kLowest, 0.16, 0.55, 0.32},
                                {kWarm - 2, 0.30, 0.69, 0.31},
                                {kWarm, 0.91, 0.70, 0.16},
                                {kHot - 1, 0.91, 0.55, 0.13},
                                {kHot, 0.85, 0.24, 0.18}};

double ShareOf(double level) {
    return (level - LMeterBallistics::kLowest) /
           (LMeterBallistics::kHighest - LMeterBallistics::kLowest);
}

class Meter : public LPaintControl {
public:
    Meter() { ballistics_.SetLevels(LDBMC(1), 0); }
    ~Meter() override { StopTimer(); }

    void SetLevels(const LDBMC& levels) {
        ballistics_.SetLevels(levels, g_get_monotonic_time());
        Invalidate();
        // A hidden meter catches up by itself: its state is a matter of time, not of pictures.
        if (timer_ == 0 && IsSeen())
            timer_ = gdk_threads_add_timeout(kFrameMs, GCFrame, this);
    }
    const LDBMC& Levels() const { return ballistics_.Levels(); }

private:
    static gboolean GCFrame(gpointer meter) {
        auto* self = static_cast<Meter*>(meter);
        self->Invalidate();
        if (self->IsSeen() && self->ballistics_.IsMoving(g_get_monotonic_time()))
            return TRUE;
        self->timer_ = 0;
        return FALSE;
    }
    bool IsSeen() const { return Area() != nullptr && gtk_widget_get_mapped(Area()) != FALSE; }
    void StopTimer() {
        if (timer_ != 0)
            g_source_remove(timer_);
    }

    void Paint(cairo_t* cairo, const GdkRectangle&) override {
        const std::int64_t now = g_get_monotonic_time();
        const int channels = std::max<int>(1, Levels().Channels());
        const double gap = Height() > channels * 4 * kGap ? kGap : 0;
        const double height = (Height() + gap) / channels - gap;
        for (int channel = 0; channel < Levels().Channels(); ++channel)
            PaintBar(cairo, {channel * (height + gap), height}, ballistics_.Bar(channel, now),
                     ballistics_.Peak(channel, now));
    }

    struct Row {
        double top, height;
    };
    void PaintBar(cairo_t* cairo, Row row, double bar, double peak) {
        const GtkStyle* style = gtk_widget_get_style(Area());
        const GtkStateType state = gtk_widget_get_state(Area());
        const double width = Width();
        cairo_save(cairo);
        AddRoundedRectangle(cairo, 0, row.top, width, row.height, 2);
        SetPaintColor(cairo, MixColors(style->bg[state], style->fg[state], 0.15));
        cairo_fill_preserve(cairo);
        cairo_clip(cairo);
        cairo_pattern_t* ramp = cairo_pattern_create_linear(0, 0, width, 0);
        for (const LStopColor& stop : kRamp)
            cairo_pattern_add_color_stop_rgb(ramp, ShareOf(stop.level), stop.red, stop.green,
                                             stop.blue);
        cairo_set_source(cairo, ramp);
        cairo_pattern_destroy(ramp);
        cairo_rectangle(cairo, 0, row.top, width * ShareOf(bar), row.height);
        cairo_fill(cairo);
        if (peak > LMeterBallistics::kLowest) {
            cairo_rectangle(cairo, std::max(0.0, width * ShareOf(peak) - 2), row.top, 2,
                            row.height);
            cairo_fill(cairo);
        }
        cairo_restore(cairo);
    }

    LMeterBallistics ballistics_;
    guint timer_ = 0;
};

Meter* MeterOf(GtkWidget* widget) {
    return widget == nullptr ? nullptr
                             : static_cast<Meter*>(g_object_get_data(G_OBJECT(widget), kMeterKey));
}

double GetLoudest(GtkWidget* area) {
    const LDBMC levels = LDBDisplay::GetLevels(area);
    int loudest = LMeterBallistics::kLowest;
    for (int channel = 0; channel < levels.Channels(); ++channel)
        loudest = std::max(loudest, levels[channel].Value());
    return std::min(loudest, LMeterBallistics::kHighest);
}

// A screen reader reads the level when asked; told of every change it would talk into the speech
// that the meter shows.
constexpr LAreaValue kLoudest{LMeterBallistics::kLowest, LMeterBallistics::kHighest, GetLoudest,
                              nullptr};

}  // namespace

GtkWidget* LDBDisplay::CreateControl() {
    GtkWidget* area = NewValueArea(ATK_ROLE_LEVEL_BAR, kLoudest);
    gtk_widget_set_size_request(area, 60, 12);
    SetAccessibleName(area, "Level");
    auto meter = std::make_unique<Meter>();
    meter->Attach(area);
    g_object_set_data_full(G_OBJECT(area), kMeterKey, meter.release(),
                           [](gpointer data) { delete static_cast<Meter*>(data); });
    return area;
}

void LDBDisplay::SetLevels(GtkWidget* meter, const LDBMC& levels) {
    if (Meter* found = MeterOf(meter))
        found->SetLevels(levels);
}

LDBMC LDBDisplay::GetLevels(GtkWidget* meter) {
    const Meter* found = MeterOf(meter);
    return found == nullptr ? LDBMC() : found->Levels();
}
