#include "gui/widgets/db_edit_paint.h"

#include <algorithm>

#include "gui/widgets/theme_paint.h"

namespace {

constexpr double kTrackHeight = 5;
constexpr double kMiddle = kDBEditHandleWidth / 2.0;
constexpr double kHandleHeight = 15;
constexpr GdkColor kAmplified{0, 0xE0E0, 0x8A8A, 0x2020};

}  // namespace

void PaintDBEdit(GtkWidget* display, const GdkEventExpose* event, const LDBEditLook& look) {
    const LCairo owner = BeginPaint(display, event);
    cairo_t* cairo = owner.get();
    const GtkStyle* style = gtk_widget_get_style(display);
    const GtkStateType state = gtk_widget_get_state(display);
    const bool usable = state != GTK_STATE_INSENSITIVE;
    const double width = display->allocation.width;
    const double height = display->allocation.height;
    const double top = (height - kTrackHeight) / 2;
    const GdkColor edge = MixColors(style->bg[state], style->fg[state], usable ? 0.55 : 0.3);

    const auto fill = [&](double from, double to, const GdkColor& color) {
        if (to <= from)
            return;
        cairo_save(cairo);
        AddRoundedRectangle(cairo, kMiddle - 2, top, width - 2 * kMiddle + 4, kTrackHeight, 2.5);
        cairo_clip(cairo);
        cairo_rectangle(cairo, from, top, to - from, kTrackHeight);
        SetPaintColor(cairo, color, usable ? 1 : 0.35);
        cairo_fill(cairo);
        cairo_restore(cairo);
    };
    const double handle = look.handle + kMiddle;
    const double unity = look.unity + kMiddle;
    fill(0, width, style->base[state]);
    fill(0, std::min(handle, unity), style->bg[GTK_STATE_SELECTED]);
    fill(unity, handle, kAmplified);
    AddRoundedRectangle(cairo, kMiddle - 1.5, top + 0.5, width - 2 * kMiddle + 3, kTrackHeight - 1,
                        2);
    cairo_set_line_width(cairo, 1);
    SetPaintColor(cairo, edge);
    cairo_stroke(cairo);

    const double markX = static_cast<int>(unity) + 0.5;
    for (const double y : {top - 3, top + kTrackHeight}) {
        cairo_move_to(cairo, markX, y);
        cairo_line_to(cairo, markX, y + 3);
    }
    cairo_stroke(cairo);

    const double handleTop = (height - kHandleHeight) / 2;
    AddRoundedRectangle(cairo, look.handle + 0.5, handleTop + 0.5, kDBEditHandleWidth - 1,
                        kHandleHeight - 1, 3);
    SetPaintColor(cairo, look.dragged ? style->bg[GTK_STATE_ACTIVE]
                                      : MixColors(style->bg[state], style->light[state], 0.5));
    cairo_fill_preserve(cairo);
    const bool focused = gtk_widget_has_focus(display) != FALSE;
    SetPaintColor(cairo, focused ? style->bg[GTK_STATE_SELECTED] : edge);
    cairo_set_line_width(cairo, focused ? 2 : 1);
    cairo_stroke(cairo);
    cairo_set_line_width(cairo, 1);
    cairo_move_to(cairo, look.handle + kMiddle, handleTop + 4);
    cairo_line_to(cairo, look.handle + kMiddle, handleTop + kHandleHeight - 4);
    SetPaintColor(cairo, edge);
    cairo_stroke(cairo);
}
