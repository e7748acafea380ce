#include "gui/content_box.h"

#include <string>
#include <vector>

#include "gui/gobject_ref.h"

namespace {

// How a child stands in its container, as far as the container says it by child properties.
struct ChildPlace {
    std::string name;
    GValue value;
};

std::vector<ChildPlace> PlaceOf(GtkContainer* parent, GtkWidget* child) {
    std::vector<ChildPlace> place;
    guint count = 0;
    GParamSpec** properties =
        gtk_container_class_list_child_properties(G_OBJECT_GET_CLASS(parent), &count);
    for (guint i = 0; i < count; ++i) {
        if ((properties[i]->flags & G_PARAM_READWRITE) != G_PARAM_READWRITE)
            continue;
        GValue value = G_VALUE_INIT;
        g_value_init(&value, properties[i]->value_type);
        gtk_container_child_get_property(parent, child, properties[i]->name, &value);
        place.push_back({properties[i]->name, value});
    }
    g_free(properties);
    return place;
}

}  // namespace

void ReplaceWidget(GtkWidget* placeholder, GtkWidget* widget) {
    GtkWidget* parent = gtk_widget_get_parent(placeholder);
    if (!GTK_IS_CONTAINER(parent))
        return;
    std::vector<ChildPlace> place = PlaceOf(GTK_CONTAINER(parent), placeholder);
    gtk_widget_destroy(placeholder);
    gtk_container_add(GTK_CONTAINER(parent), widget);
    for (ChildPlace& property : place) {
        gtk_container_child_set_property(GTK_CONTAINER(parent), widget, property.name.c_str(),
                                         &property.value);
        g_value_unset(&property.value);
    }
}
