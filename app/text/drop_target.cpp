#include "app/text/drop_target.h"

#include "documents/small_texts.h"
#include "documents/web_address.h"
#include "foundation/owned_text.h"

namespace {

// Not among the numbers that the text box gives its own targets.
constexpr guint kFiles = 4711;
constexpr guint kText = 4712;

std::vector<std::string> LocalPaths(GtkSelectionData* data) {
    std::vector<std::string> paths;
    char** addresses = gtk_selection_data_get_uris(data);
    for (char** address = addresses; address != nullptr && *address != nullptr; ++address) {
        if (const OwnedText path{g_filename_from_uri(*address, nullptr, nullptr)})
            paths.emplace_back(path.get());
        else if (IsWebAddress(*address))
            paths.emplace_back(Trimmed(*address));
    }
    g_strfreev(addresses);
    return paths;
}

}  // namespace

void DropTarget::Attach(GtkWidget* window, GtkWidget* view) {
    view_ = view;
    gtk_drag_dest_set(window, GTK_DEST_DEFAULT_ALL, nullptr, 0, GDK_ACTION_COPY);
    GtkTargetList* targets = gtk_target_list_new(nullptr, 0);
    gtk_target_list_add_uri_targets(targets, kFiles);
    gtk_target_list_add_text_targets(targets, kText);
    gtk_drag_dest_set_target_list(window, targets);
    gtk_target_list_unref(targets);
    g_signal_connect(window, "drag-data-received", G_CALLBACK(GCReceived), this);

    // File managers offer the names of files as text too: as files they come first.
    targets = gtk_target_list_new(nullptr, 0);
    gtk_target_list_add_uri_targets(targets, kFiles);
    for (GList* own = gtk_drag_dest_get_target_list(view)->list; own != nullptr; own = own->next) {
        const auto* pair = static_cast<GtkTargetPair*>(own->data);
        gtk_target_list_add(targets, pair->target, pair->flags, pair->info);
    }
    gtk_drag_dest_set_target_list(view, targets);
    gtk_target_list_unref(targets);
    g_signal_connect(view, "drag-data-received", G_CALLBACK(GCReceived), this);
}

void DropTarget::GCReceived(GtkWidget* widget, GdkDragContext* context, gint, gint,
                            GtkSelectionData* data, guint info, guint time, gpointer user) {
    static_cast<DropTarget*>(user)->EvReceived(widget, context, data, info, time);
}

void DropTarget::EvReceived(GtkWidget* widget, GdkDragContext* context, GtkSelectionData* data,
                            guint info, guint time) {
    if (info == kFiles) {
        const std::vector<std::string> paths = LocalPaths(data);
        if (widget == view_) {
            g_signal_stop_emission_by_name(widget, "drag-data-received");
            gtk_drag_finish(context, !paths.empty(), FALSE, time);
        }
        if (!paths.empty())
            files_(paths);
    } else if (info == kText) {
        const OwnedText text(reinterpret_cast<char*>(gtk_selection_data_get_text(data)));
        if (text && IsWebAddress(text.get()))
            files_({std::string(Trimmed(text.get()))});
        else if (text)
            text_(text.get());
    }
}
