#include "gui/accessible.h"

void SetAccessibleName(GtkWidget* widget, const char* name) {
    if (AtkObject* accessible = gtk_widget_get_accessible(widget))
        atk_object_set_name(accessible, name);
    if (GTK_IS_COMBO_BOX(widget) && gtk_combo_box_get_has_entry(GTK_COMBO_BOX(widget)))
        SetAccessibleName(gtk_bin_get_child(GTK_BIN(widget)), name);
}

void LabelWidget(GtkWidget* label, GtkWidget* widget) {
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), widget);
    SetAccessibleName(widget, gtk_label_get_text(GTK_LABEL(label)));
}
