#include "gui/controls/prompt_text.h"

#include "gui/display_text.h"
#include "gui/gobject_ref.h"
#include "gui/widgets/theme_paint.h"

namespace {

constexpr const char* kPromptKey = "prompt";

bool IsEmpty(GtkWidget* field) {
    if (GTK_IS_ENTRY(field))
        return gtk_entry_get_text_length(GTK_ENTRY(field)) == 0;
    return gtk_text_buffer_get_char_count(gtk_text_view_get_buffer(GTK_TEXT_VIEW(field))) == 0;
}

GdkWindow* TextWindow(GtkWidget* field) {
    if (GTK_IS_ENTRY(field))
        return gtk_entry_get_text_window(GTK_ENTRY(field));
    return gtk_text_view_get_window(GTK_TEXT_VIEW(field), GTK_TEXT_WINDOW_TEXT);
}

// Where the field begins its own text.
GdkPoint PlaceOfText(GtkWidget* field, GdkWindow* window, PangoLayout* layout) {
    if (!GTK_IS_ENTRY(field))
        return {gtk_text_view_get_left_margin(GTK_TEXT_VIEW(field)), 0};
    // The text's window lies within the entry's.
    int x = 0;
    int left = 0;
    int height = 0;
    int textHeight = 0;
    gtk_entry_get_layout_offsets(GTK_ENTRY(field), &x, nullptr);
    gdk_window_get_position(window, &left, nullptr);
    gdk_drawable_get_size(window, nullptr, &height);
    pango_layout_get_pixel_size(layout, nullptr, &textHeight);
    return {x - left, (height - textHeight) / 2};
}

gboolean GCPromptExpose(GtkWidget* field, GdkEventExpose* event, gpointer) {
    const auto* text = static_cast<const char*>(g_object_get_data(G_OBJECT(field), kPromptKey));
    if (event->window != TextWindow(field) || text == nullptr || !IsEmpty(field))
        return FALSE;
    const auto layout = GObjectRef<PangoLayout>::Adopt(gtk_widget_create_pango_layout(field, text));
    const GdkPoint place = PlaceOfText(field, event->window, layout.Get());
    // Half-way between text and background; what a theme paints for disabled texts may be embossed.
    const LCairo cairo(gdk_cairo_create(event->window));
    gdk_cairo_set_source_color(cairo.get(),
                               &gtk_widget_get_style(field)->text_aa[GTK_STATE_NORMAL]);
    cairo_move_to(cairo.get(), place.x, place.y);
    pango_cairo_show_layout(cairo.get(), layout.Get());
    return FALSE;
}

}  // namespace

void SetPromptText(GtkWidget* field, const char* text) {
    const std::string shown = DisplayText(text);
    g_object_set_data_full(G_OBJECT(field), kPromptKey,
                           shown.empty() ? nullptr : g_strdup(shown.c_str()), g_free);
    atk_object_set_description(gtk_widget_get_accessible(field), shown.c_str());
    g_signal_handlers_disconnect_by_func(field, reinterpret_cast<gpointer>(GCPromptExpose),
                                         nullptr);
    g_signal_connect_after(field, "expose-event", G_CALLBACK(GCPromptExpose), nullptr);
    gtk_widget_queue_draw(field);
}
