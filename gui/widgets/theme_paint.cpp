#include "gui/widgets/theme_paint.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double kFullColor = 65535;

guint16 MixChannel(guint16 first, guint16 second, double share) {
    return static_cast<guint16>(std::lround(first + (second - first) * share));
}

}  // namespace

LCairo BeginPaint(GtkWidget* widget, const GdkEventExpose* event) {
    LCairo cairo(gdk_cairo_create(gtk_widget_get_window(widget)));
    gdk_cairo_region(cairo.get(), event->region);
    cairo_clip(cairo.get());
    return cairo;
}

void SetPaintColor(cairo_t* cairo, const GdkColor& color, double alpha) {
    cairo_set_source_rgba(cairo, color.red / kFullColor, color.green / kFullColor,
                          color.blue / kFullColor, alpha);
}

GdkColor MixColors(const GdkColor& first, const GdkColor& second, double share) {
    return {0, MixChannel(first.red, second.red, share),
            MixChannel(first.green, second.green, share),
            MixChannel(first.blue, second.blue, share)};
}

bool IsDarkGround(const GdkColor& ground) {
    return 0.30 * ground.red + 0.59 * ground.green + 0.11 * ground.blue < kFullColor / 2;
}

void AddRoundedRectangle(cairo_t* cairo, double x, double y, double width, double height,
                         double radius) {
    constexpr double kQuarter = std::numbers::pi / 2;
    const double r = std::max(0.0, std::min({radius, width / 2, height / 2}));
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, x + width - r, y + r, r, -kQuarter, 0);
    cairo_arc(cairo, x + width - r, y + height - r, r, 0, kQuarter);
    cairo_arc(cairo, x + r, y + height - r, r, kQuarter, 2 * kQuarter);
    cairo_arc(cairo, x + r, y + r, r, 2 * kQuarter, 3 * kQuarter);
    cairo_close_path(cairo);
}
