#include "gui/icons.h"

#include <glib.h>

#include <string>

#include "foundation/machine_root.h"

GObjectRef<GdkPixbuf> LoadIcon(int number) {
    return GObjectRef<GdkPixbuf>::Adopt(
        gdk_pixbuf_new_from_file(IconPath(number).c_str(), nullptr));
}

GObjectRef<GdkPixbuf> LoadIconAt(int number, int pixels) {
    const std::string whole = IconPath(number);
    const std::string size = std::to_string(pixels);
    const std::size_t name = whole.rfind('/') + 1;
    const std::string drawn = whole.substr(0, name) + size + "x" + size + "/" + whole.substr(name);
    return GObjectRef<GdkPixbuf>::Adopt(
        g_file_test(drawn.c_str(), G_FILE_TEST_EXISTS)
            ? gdk_pixbuf_new_from_file(drawn.c_str(), nullptr)
            : gdk_pixbuf_new_from_file_at_size(whole.c_str(), pixels, pixels, nullptr));
}

void SetWindowIcon(GtkWindow* window, int number) {
    if (const auto icon = LoadIcon(number))
        gtk_window_set_icon(window, icon.Get());
}

GtkWidget* NewIconImage(int number) {
    return gtk_image_new_from_pixbuf(LoadIcon(number).Get());
}

GtkWidget* NewIconImageAt(int number, int pixels) {
    return gtk_image_new_from_pixbuf(LoadIconAt(number, pixels).Get());
}
