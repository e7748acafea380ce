// Sizes that texts in a large font may exceed.
#pragma once

#include <gtk/gtk.h>

#include <algorithm>

// GTK takes a size request for the size itself, which would cut longer or larger texts. Pixels; -1
// asks for nothing. Call it with the content in place.
inline void SetMinimumSize(GtkWidget* widget, int width, int height) {
    GtkRequisition natural;
    gtk_widget_size_request(widget, &natural);
    gtk_widget_set_size_request(widget, width < 0 ? -1 : std::max(natural.width, width),
                                height < 0 ? -1 : std::max(natural.height, height));
}
