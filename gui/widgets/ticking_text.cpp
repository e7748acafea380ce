#include "gui/widgets/ticking_text.h"

#include <algorithm>

#include "gui/accessible.h"
#include "gui/gobject_ref.h"

namespace {

constexpr const char* kLayoutKey = "ticking-layout";
constexpr const char* kCharactersKey = "ticking-characters";

PangoLayout* LayoutOf(GtkWidget* line) {
    return static_cast<PangoLayout*>(g_object_get_data(G_OBJECT(line), kLayoutKey));
}

void GCTickingSize(GtkWidget* line, GtkRequisition* wanted, gpointer) {
    PangoContext* context = gtk_widget_get_pango_context(line);
    PangoFontMetrics* metrics = pango_context_get_metrics(context, line->style->font_desc, nullptr);
    const int letter = std::max(pango_font_metrics_get_approximate_char_width(metrics),
                                pango_font_metrics_get_approximate_digit_width(metrics));
    const int characters = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(line), kCharactersKey));
    wanted->width = PANGO_PIXELS(letter * characters);
    wanted->height = PANGO_PIXELS(pango_font_metrics_get_ascent(metrics) +
                                  pango_font_metrics_get_descent(metrics));
    pango_font_metrics_unref(metrics);
}

gboolean GCTickingExpose(GtkWidget* line, GdkEventExpose* event, gpointer) {
    const GtkAllocation& place = line->allocation;
    PangoLayout* layout = LayoutOf(line);
    pango_layout_set_width(layout, place.width * PANGO_SCALE);
    int height = 0;
    pango_layout_get_pixel_size(layout, nullptr, &height);
    gtk_paint_layout(line->style, line->window, gtk_widget_get_state(line), FALSE, &event->area,
                     line, "label", place.x, place.y + (place.height - height) / 2, layout);
    return FALSE;
}

// Other letters, or the other direction.
void GCTickingStyle(GtkWidget* line) {
    pango_layout_context_changed(LayoutOf(line));
}

}  // namespace

GtkWidget* NewTickingText(int characters) {
    GtkWidget* line = gtk_drawing_area_new();
    gtk_widget_set_has_window(line, FALSE);
    PangoLayout* layout = gtk_widget_create_pango_layout(line, "");
    pango_layout_set_single_paragraph_mode(layout, TRUE);
    pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    g_object_set_data_full(G_OBJECT(line), kLayoutKey, layout, g_object_unref);
    g_object_set_data(G_OBJECT(line), kCharactersKey, GINT_TO_POINTER(characters));
    g_signal_connect(line, "size-request", G_CALLBACK(GCTickingSize), nullptr);
    g_signal_connect(line, "expose-event", G_CALLBACK(GCTickingExpose), nullptr);
    g_signal_connect_after(line, "style-set", G_CALLBACK(GCTickingStyle), nullptr);
    g_signal_connect_after(line, "direction-changed", G_CALLBACK(GCTickingStyle), nullptr);
    atk_object_set_role(gtk_widget_get_accessible(line), ATK_ROLE_LABEL);
    return line;
}

void SetTickingText(GtkWidget* line, const std::string& text, const std::string& told) {
    if (line == nullptr)
        return;
    if (text != TickingTextOf(line)) {
        pango_layout_set_text(LayoutOf(line), text.c_str(), static_cast<int>(text.size()));
        gtk_widget_queue_draw(line);
    }
    const char* name = atk_object_get_name(gtk_widget_get_accessible(line));
    if (name == nullptr || told != name)
        SetAccessibleName(line, told.c_str());
}

std::string TickingTextOf(GtkWidget* line) {
    return pango_layout_get_text(LayoutOf(line));
}
