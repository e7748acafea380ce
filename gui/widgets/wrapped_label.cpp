#include "gui/widgets/wrapped_label.h"

namespace {

constexpr const char* kWidthKey = "wrapped-width";

int GivenWidth(GtkWidget* label) {
    return GPOINTER_TO_INT(g_object_get_data(G_OBJECT(label), kWidthKey));
}

void BreakLines(GtkWidget* label, int width) {
    pango_layout_set_width(gtk_label_get_layout(GTK_LABEL(label)), width * PANGO_SCALE);
}

// Takes the width that it is given; the height follows from it.
void GCSizeRequest(GtkWidget* label, GtkRequisition* wanted, gpointer) {
    if (GivenWidth(label) > 0) {
        BreakLines(label, GivenWidth(label));
        pango_layout_get_pixel_size(gtk_label_get_layout(GTK_LABEL(label)), nullptr,
                                    &wanted->height);
    }
    wanted->width = 1;
}

// GTK 2 asks for the height before it tells the width, so a new width has to be asked for again.
void GCSizeAllocate(GtkWidget* label, GtkAllocation* place, gpointer) {
    if (place->width != GivenWidth(label)) {
        g_object_set_data(G_OBJECT(label), kWidthKey, GINT_TO_POINTER(place->width));
        gtk_widget_queue_resize(label);
    }
    BreakLines(label, place->width);
}

}  // namespace

GtkWidget* NewWrappedLabel(const char* text) {
    GtkWidget* label = gtk_label_new(text);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    gtk_misc_set_alignment(GTK_MISC(label), 0, 0.5);
    g_signal_connect_after(label, "size-request", G_CALLBACK(GCSizeRequest), nullptr);
    g_signal_connect_after(label, "size-allocate", G_CALLBACK(GCSizeAllocate), nullptr);
    return label;
}
