#include "gui/icons.h"

#include <glib.h>

#include <string>

#include "foundation/files/machine_root.h"
#include "foundation/owned_text.h"

namespace {

// Told what it is: to have its kind guessed costs more than the icon, and a start loads a score.
GObjectRef<GdkPixbuf> LoadPng(const std::string& path) {
    char* bytes = nullptr;
    gsize size = 0;
    if (!g_file_get_contents(path.c_str(), &bytes, &size, nullptr))
        return {};
    const OwnedText owner(bytes);
    const auto loader =
        GObjectRef<GdkPixbufLoader>::Adopt(gdk_pixbuf_loader_new_with_type("png", nullptr));
    const bool isWritten = gdk_pixbuf_loader_write(
        loader.Get(), reinterpret_cast<const guchar*>(bytes), size, nullptr);
    if (!gdk_pixbuf_loader_close(loader.Get(), nullptr) || !isWritten)
        return {};
    return GObjectRef<GdkPixbuf>::Share(gdk_pixbuf_loader_get_pixbuf(loader.Get()));
}

}  // namespace

GObjectRef<GdkPixbuf> LoadIcon(int number) {
    return LoadPng(IconPath(number));
}

GObjectRef<GdkPixbuf> LoadIconAt(int number, int pixels) {
    const std::string whole = IconPath(number);
    const std::string size = std::to_string(pixels);
    const std::size_t name = whole.rfind('/') + 1;
    const std::string drawn = whole.substr(0, name) + size + "x" + size + "/" + whole.substr(name);
    if (auto icon = LoadPng(drawn))
        return icon;
    return GObjectRef<GdkPixbuf>::Adopt(
        gdk_pixbuf_new_from_file_at_size(whole.c_str(), pixels, pixels, nullptr));
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
