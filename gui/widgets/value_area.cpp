#include "gui/widgets/value_area.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr const char* kValueKey = "area-value";
constexpr const char* kRoleKey = "area-role";

// The drawing area behind an accessible; null once it is destroyed.
GtkWidget* AreaOf(gpointer accessible) {
    return gtk_accessible_get_widget(GTK_ACCESSIBLE(accessible));
}

const LAreaValue* ValueOf(GtkWidget* area) {
    return area == nullptr
               ? nullptr
               : static_cast<const LAreaValue*>(g_object_get_data(G_OBJECT(area), kValueKey));
}

void Give(GValue* out, double number) {
    g_value_init(out, G_TYPE_DOUBLE);
    g_value_set_double(out, number);
}

void GetCurrent(AtkValue* accessible, GValue* out) {
    GtkWidget* area = AreaOf(accessible);
    const LAreaValue* value = ValueOf(area);
    Give(out, value == nullptr ? 0 : value->get(area));
}

void GetLowest(AtkValue* accessible, GValue* out) {
    const LAreaValue* value = ValueOf(AreaOf(accessible));
    Give(out, value == nullptr ? 0 : value->lowest);
}

void GetHighest(AtkValue* accessible, GValue* out) {
    const LAreaValue* value = ValueOf(AreaOf(accessible));
    Give(out, value == nullptr ? 0 : value->highest);
}

gboolean SetCurrent(AtkValue* accessible, const GValue* wanted) {
    GtkWidget* area = AreaOf(accessible);
    const LAreaValue* value = ValueOf(area);
    if (value == nullptr || value->set == nullptr || !gtk_widget_is_sensitive(area))
        return FALSE;
    GValue number = G_VALUE_INIT;
    g_value_init(&number, G_TYPE_DOUBLE);
    const bool understood =
        g_value_transform(wanted, &number) != FALSE && !std::isnan(g_value_get_double(&number));
    if (understood)
        value->set(area, std::clamp(g_value_get_double(&number), value->lowest, value->highest));
    g_value_unset(&number);
    return understood;
}

void InitValueInterface(gpointer iface, gpointer) {
    auto* value = static_cast<AtkValueIface*>(iface);
    value->get_current_value = GetCurrent;
    value->get_minimum_value = GetLowest;
    value->get_maximum_value = GetHighest;
    value->set_current_value = SetCurrent;
}

// The accessible that the toolkit's accessibility module makes for drawing areas; that module is
// loaded at run time, so what can be derived from it is known only then. 0 without the module.
GType DrawingAreaAccessibleType() {
    const GType type = atk_object_factory_get_accessible_type(
        atk_registry_get_factory(atk_get_default_registry(), GTK_TYPE_DRAWING_AREA));
    return g_type_is_a(type, GTK_TYPE_ACCESSIBLE) ? type : 0;
}

GType AccessibleType() {
    static const GType type = [] {
        const GType parent = DrawingAreaAccessibleType();
        GTypeQuery sizes;
        g_type_query(parent, &sizes);
        GTypeInfo info{};
        info.class_size = static_cast<guint16>(sizes.class_size);
        info.instance_size = static_cast<guint16>(sizes.instance_size);
        const GType made =
            g_type_register_static(parent, "LectoraValueAccessible", &info, GTypeFlags(0));
        const GInterfaceInfo value{InitValueInterface, nullptr, nullptr};
        g_type_add_interface_static(made, ATK_TYPE_VALUE, &value);
        return made;
    }();
    return type;
}

AtkObject* CreateAccessible(GObject* area) {
    auto* accessible = static_cast<AtkObject*>(g_object_new(AccessibleType(), nullptr));
    atk_object_initialize(accessible, area);
    atk_object_set_role(accessible,
                        static_cast<AtkRole>(GPOINTER_TO_INT(g_object_get_data(area, kRoleKey))));
    return accessible;
}

GType FactoryType() {
    static const GType type = [] {
        GTypeInfo info{};
        info.class_size = sizeof(AtkObjectFactoryClass);
        info.instance_size = sizeof(AtkObjectFactory);
        info.class_init = [](gpointer factoryClass, gpointer) {
            auto* factory = static_cast<AtkObjectFactoryClass*>(factoryClass);
            factory->create_accessible = CreateAccessible;
            factory->get_accessible_type = AccessibleType;
        };
        return g_type_register_static(ATK_TYPE_OBJECT_FACTORY, "LectoraValueAccessibleFactory",
                                      &info, GTypeFlags(0));
    }();
    return type;
}

GType AreaType() {
    static const GType type = [] {
        GTypeInfo info{};
        info.class_size = sizeof(GtkDrawingAreaClass);
        info.instance_size = sizeof(GtkDrawingArea);
        const GType made =
            g_type_register_static(GTK_TYPE_DRAWING_AREA, "LectoraValueArea", &info, GTypeFlags(0));
        if (DrawingAreaAccessibleType() != 0)
            atk_registry_set_factory_type(atk_get_default_registry(), made, FactoryType());
        return made;
    }();
    return type;
}

}  // namespace

GtkWidget* NewValueArea(AtkRole role, const LAreaValue& value) {
    GtkWidget* area = gtk_widget_new(AreaType(), nullptr);
    g_object_set_data(G_OBJECT(area), kRoleKey, GINT_TO_POINTER(role));
    g_object_set_data(G_OBJECT(area), kValueKey, const_cast<LAreaValue*>(&value));
    return area;
}

void TellValueChanged(GtkWidget* area) {
    g_object_notify(G_OBJECT(gtk_widget_get_accessible(area)), "accessible-value");
}
