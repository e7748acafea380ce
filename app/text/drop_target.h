// Files and texts that are dropped on the main window.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

// GUI thread. Text that is dropped on the text box itself stays the text box's: it comes to the
// place where it was dropped.
class DropTarget {
public:
    // files: paths on this computer and addresses of web pages, from the main loop.
    DropTarget(std::function<void(const std::vector<std::string>&)> files,
               std::function<void(const std::string&)> text)
        : files_(std::move(files)), text_(std::move(text)) {}
    DropTarget(const DropTarget&) = delete;
    DropTarget& operator=(const DropTarget&) = delete;

    // Once; window and view end before this object.
    void Attach(GtkWidget* window, GtkWidget* view);

private:
    static void GCReceived(GtkWidget* widget, GdkDragContext* context, gint x, gint y,
                           GtkSelectionData* data, guint info, guint time, gpointer self);

    void EvReceived(GtkWidget* widget, GdkDragContext* context, GtkSelectionData* data, guint info,
                    guint time);

    std::function<void(const std::vector<std::string>&)> files_;
    std::function<void(const std::string&)> text_;
    GtkWidget* view_ = nullptr;
};
