// Cairo drawing in the colours of the user's theme.
#pragma once

#include <gtk/gtk.h>

#include <memory>

struct LCairoDestroy {
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
};
using LCairo = std::unique_ptr<cairo_t, LCairoDestroy>;

// A context on the widget's window, clipped to what the event exposed.
LCairo BeginPaint(GtkWidget* widget, const GdkEventExpose* event);

void SetPaintColor(cairo_t* cairo, const GdkColor& color, double alpha = 1);
// `share` of the second colour, 0 to 1, in the first.
GdkColor MixColors(const GdkColor& first, const GdkColor& second, double share);
// Whether text on this ground is light.
bool IsDarkGround(const GdkColor& ground);
// Adds to the path; the radius is cut to what fits.
void AddRoundedRectangle(cairo_t* cairo, double x, double y, double width, double height,
                         double radius);
