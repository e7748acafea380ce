// The children of a container, as a range.
#pragma once

#include <gtk/gtk.h>

#include <vector>

// The children as they were when this was made; borrowed.
class LGtkChildren {
public:
    explicit LGtkChildren(GtkWidget* container) {
        GList* list = gtk_container_get_children(GTK_CONTAINER(container));
        for (const GList* child = list; child != nullptr; child = child->next)
            children_.push_back(GTK_WIDGET(child->data));
        g_list_free(list);
    }
    auto begin() const { return children_.begin(); }
    auto end() const { return children_.end(); }
    GtkWidget* First() const { return children_.empty() ? nullptr : children_.front(); }

private:
    std::vector<GtkWidget*> children_;
};
