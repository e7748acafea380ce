#include "gui/widgets/hyper_link.h"

#include <string>

#include "foundation/processes/browser.h"
#include "gui/accessible.h"
#include "gui/display_text.h"
#include "gui/widgets/theme_paint.h"

namespace {

constexpr const char* kAddressKey = "hyper-link";
constexpr GdkColor kOnLight{0, 0x1B1B, 0x5E5E, 0xB0B0};
constexpr GdkColor kOnDark{0, 0x8080, 0xBABA, 0xFFFF};

GtkWidget* LabelOf(GtkWidget* link) {
    return gtk_bin_get_child(GTK_BIN(link));
}

void GCClicked(GtkWidget* link, gpointer) {
    OpenInBrowser(static_cast<const char*>(g_object_get_data(G_OBJECT(link), kAddressKey)));
}

// Themes may name a colour for links; those that do not get one that reads well on their ground.
void GCStyleSet(GtkWidget* link, GtkStyle*, gpointer) {
    GdkColor* named = nullptr;
    gtk_widget_style_get(link, "link-color", &named, nullptr);
    const GdkColor& ground = gtk_widget_get_style(link)->bg[GTK_STATE_NORMAL];
    const GdkColor color = named != nullptr ? *named : IsDarkGround(ground) ? kOnDark : kOnLight;
    for (const GtkStateType state : {GTK_STATE_NORMAL, GTK_STATE_PRELIGHT, GTK_STATE_ACTIVE})
        gtk_widget_modify_fg(LabelOf(link), state, &color);
    if (named != nullptr)
        gdk_color_free(named);
}

void GCRealize(GtkWidget* link, gpointer) {
    GdkCursor* hand = gdk_cursor_new_for_display(gtk_widget_get_display(link), GDK_HAND2);
    gdk_window_set_cursor(gtk_button_get_event_window(GTK_BUTTON(link)), hand);
    gdk_cursor_unref(hand);
}

}  // namespace

GtkWidget* NewHyperLink(const char* text, const char* address) {
    GtkWidget* link = gtk_button_new();
    gtk_button_set_relief(GTK_BUTTON(link), GTK_RELIEF_NONE);
    gtk_button_set_alignment(GTK_BUTTON(link), 0, 0.5);
    GtkWidget* label = gtk_label_new(nullptr);
    PangoAttrList* underlined = pango_attr_list_new();
    pango_attr_list_insert(underlined, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
    gtk_label_set_attributes(GTK_LABEL(label), underlined);
    pango_attr_list_unref(underlined);
    gtk_container_add(GTK_CONTAINER(link), label);
    gtk_widget_show(label);
    g_object_set_data(G_OBJECT(link), kAddressKey, const_cast<char*>(""));
    SetHyperLink(link, text, address);
    atk_object_set_role(gtk_widget_get_accessible(link), ATK_ROLE_LINK);
    g_signal_connect(link, "clicked", G_CALLBACK(GCClicked), nullptr);
    g_signal_connect(link, "style-set", G_CALLBACK(GCStyleSet), nullptr);
    g_signal_connect_after(link, "realize", G_CALLBACK(GCRealize), nullptr);
    return link;
}

void SetHyperLink(GtkWidget* link, const char* text, const char* address) {
    if (link == nullptr || g_object_get_data(G_OBJECT(link), kAddressKey) == nullptr)
        return;
    const std::string shown = DisplayText(text);
    gtk_label_set_text(GTK_LABEL(LabelOf(link)), shown.c_str());
    SetAccessibleName(link, shown.c_str());
    gtk_widget_set_tooltip_text(link, DisplayText(address).c_str());
    g_object_set_data_full(G_OBJECT(link), kAddressKey, g_strdup(address), g_free);
}
