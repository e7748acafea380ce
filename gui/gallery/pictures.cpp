#include "gui/gallery/pictures.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include "foundation/gdk/gdk_lock.h"
#include "gui/gtk_children.h"
#include "gui/windows/window.h"

namespace {

// Placing, drawing and theme pictures take some turns of the main loop.
void Settle() {
    constexpr gint64 kMicroseconds = 400'000;
    const gint64 end = g_get_monotonic_time() + kMicroseconds;
    while (g_get_monotonic_time() < end) {
        while (gtk_events_pending())
            gtk_main_iteration_do(FALSE);
        g_usleep(2000);
    }
}

}  // namespace

GtkWidget* OpenWindow() {
    GtkWidget* found = nullptr;
    GList* windows = gtk_window_list_toplevels();
    for (const GList* at = windows; at != nullptr; at = at->next) {
        if (gtk_widget_get_mapped(GTK_WIDGET(at->data)) &&
            gtk_window_get_window_type(GTK_WINDOW(at->data)) == GTK_WINDOW_TOPLEVEL)
            found = GTK_WIDGET(at->data);
    }
    g_list_free(windows);
    return found;
}

Pictures::Pictures(std::string folder) : folder_(std::move(folder)) {
    if (AreTaken())
        std::filesystem::create_directories(folder_);
    g_log_set_default_handler(GCComplain, this);
}

Pictures::~Pictures() {
    g_log_set_default_handler(g_log_default_handler, nullptr);
}

// The one complaint that is GTK's own to make is about a theme's engine that is not installed.
void Pictures::GCComplain(const char* domain, GLogLevelFlags level, const char* message,
                          gpointer pictures) {
    g_log_default_handler(domain, level, message, nullptr);
    constexpr auto kBad =
        GLogLevelFlags(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_ERROR);
    if ((level & kBad) != 0 && std::strstr(message, "Unable to locate theme engine") == nullptr)
        static_cast<Pictures*>(pictures)->isAllWell_ = false;
}

// What got less room than it asked for is cut off on the screen. What scrolls needs none, and
// GTK's own path bar gives its arrows less.
void Pictures::CheckRoom(GtkWidget* widget, const char* picture) {
    if (!gtk_widget_get_mapped(widget))
        return;
    GtkRequisition wanted;
    gtk_widget_get_child_requisition(widget, &wanted);
    const GtkAllocation& place = widget->allocation;
    if (place.width < wanted.width || place.height < wanted.height) {
        std::fprintf(stderr, "%s: %s \"%s\" wants %d x %d, has %d x %d\n", picture,
                     G_OBJECT_TYPE_NAME(widget),
                     GTK_IS_LABEL(widget) ? gtk_label_get_text(GTK_LABEL(widget)) : "",
                     wanted.width, wanted.height, place.width, place.height);
        isAllWell_ = false;
    }
    const bool scrolls =
        GTK_IS_SCROLLED_WINDOW(widget) || g_strcmp0(G_OBJECT_TYPE_NAME(widget), "GtkPathBar") == 0;
    if (GTK_IS_CONTAINER(widget) && !scrolls)
        for (GtkWidget* child : LGtkChildren(widget))
            CheckRoom(child, picture);
}

void Pictures::Take(const char* name) {
    Settle();
    GtkWidget* window = OpenWindow();
    if (window == nullptr)
        return;
    CheckRoom(window, name);
    GdkRectangle frame;
    gdk_window_get_frame_extents(gtk_widget_get_window(window), &frame);
    GdkWindow* root = gdk_get_default_root_window();
    int width = 0;
    int height = 0;
    gdk_drawable_get_size(root, &width, &height);
    if (frame.width > width || frame.height > height) {
        std::fprintf(stderr, "%s: %d x %d is larger than the screen\n", name, frame.width,
                     frame.height);
        isAllWell_ = false;
    }
    const GdkRectangle screen{0, 0, width, height};
    GdkRectangle seen;
    gdk_rectangle_intersect(&frame, &screen, &seen);
    const auto picture = GObjectRef<GdkPixbuf>::Adopt(gdk_pixbuf_get_from_drawable(
        nullptr, root, nullptr, seen.x, seen.y, 0, 0, seen.width, seen.height));
    const std::string file = folder_ + "/" + name + ".png";
    gdk_pixbuf_save(picture.Get(), file.c_str(), "png", nullptr, nullptr);
}

void Pictures::Present(const LWindow& window, const char* name) {
    if (AreTaken())
        Take(name);
    while (!AreTaken() && window.Widget() != nullptr && gtk_widget_get_mapped(window.Widget()))
        gtk_main_iteration();
}

void Pictures::TakeNext(const char* name) {
    next_ = name;
    g_timeout_add(20, GCTakeNext, this);
}

gboolean Pictures::GCTakeNext(gpointer pictures) {
    const GdkLock lock;
    auto* self = static_cast<Pictures*>(pictures);
    self->Take(self->next_);
    gtk_dialog_response(GTK_DIALOG(OpenWindow()), GTK_RESPONSE_CANCEL);
    return G_SOURCE_REMOVE;
}
