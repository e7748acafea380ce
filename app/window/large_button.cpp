#include "app/window/large_button.h"

#include <algorithm>

#include "gui/gobject_ref.h"

namespace {

constexpr const char* kTexts[] = {"Read from Cursor", "Read Selection", "Save as Speech"};
constexpr int kPictureRoom = 32 + 24;  // pixels, with the gaps around it and the button's frame
constexpr int kFrameRoom = 20;

}  // namespace

GtkRequisition LargeButtonSize(GtkWidget* button) {
    GtkRequisition size{};
    for (const char* text : kTexts) {
        const auto layout =
            GObjectRef<PangoLayout>::Adopt(gtk_widget_create_pango_layout(button, text));
        int width = 0;
        int height = 0;
        pango_layout_get_pixel_size(layout.Get(), &width, &height);
        size.width = std::max(size.width, width + kPictureRoom);
        size.height = std::max(size.height, height + kFrameRoom);
    }
    return size;
}
