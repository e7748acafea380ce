#include "gui/icons.h"

#include "foundation/machine_root.h"

GObjectRef<GdkPixbuf> LoadIcon(int number) {
    return GObjectRef<GdkPixbuf>::Adopt(
        gdk_pixbuf_new_from_file(IconPath(number).c_str(), nullptr));
}

void SetWindowIcon(GtkWindow* window, int number) {
    if (const auto icon = LoadIcon(number))
        gtk_window_set_icon(window, icon.Get());
}

GtkWidget* NewIconImage(int number) {
    return gtk_image_new_from_pixbuf(LoadIcon(number).Get());
}
