#include "gui/accessible.h"

#include "gui/gobject_ref.h"

void SetAccessibleName(GtkWidget* widget, const char* name) {
    if (AtkObject* accessible = gtk_widget_get_accessible(widget))
        atk_object_set_name(accessible, name);
    if (GTK_IS_COMBO_BOX(widget) && gtk_combo_box_get_has_entry(GTK_COMBO_BOX(widget)))
        SetAccessibleName(gtk_bin_get_child(GTK_BIN(widget)), name);
}

void SetPanelName(GtkWidget* box, const char* name) {
    atk_object_set_role(gtk_widget_get_accessible(box), ATK_ROLE_PANEL);
    SetAccessibleName(box, name);
}

void TellScreenReader(GtkWidget* widget, const char* text) {
    // What comes up in this role is said, and only that. The label stands in no window: one that
    // Tab reaches would be called a notification there too.
    auto news = GObjectRef<GtkWidget>::Share(gtk_label_new(text));
    gtk_widget_show(news.Get());
    AtkObject* accessible = gtk_widget_get_accessible(news.Get());
    atk_object_set_role(accessible, ATK_ROLE_NOTIFICATION);
    atk_object_set_parent(accessible, gtk_widget_get_accessible(widget));
    atk_object_notify_state_change(accessible, ATK_STATE_SHOWING, TRUE);
    // The screen reader, if there is one, asks for the text later.
    g_object_set_data_full(G_OBJECT(widget), "news", news.Release(), g_object_unref);
}

void LabelWidget(GtkWidget* label, GtkWidget* widget) {
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), widget);
    SetAccessibleName(widget, gtk_label_get_text(GTK_LABEL(label)));
}
