#include "gui/controls/control_factory.h"

#include "gui/accessible.h"

GtkWidget* NewDropDownList() {
    return gtk_combo_box_text_new();
}

GtkWidget* NewComboBox() {
    GtkWidget* combo = gtk_combo_box_text_new_with_entry();
    // Up and Down choose another row from the entry; of that a screen reader says only that the old
    // text has gone.
    g_signal_connect(combo, "changed", G_CALLBACK(+[](GtkComboBox* self, gpointer) {
                         GtkWidget* entry = gtk_bin_get_child(GTK_BIN(self));
                         if (gtk_combo_box_get_active(self) >= 0 && gtk_widget_has_focus(entry))
                             TellScreenReader(entry, gtk_entry_get_text(GTK_ENTRY(entry)));
                     }),
                     nullptr);
    return combo;
}

GtkWidget* NewProgressBar() {
    GtkWidget* bar = gtk_progress_bar_new();
    // Its accessible takes the adjustment that is there when it is made, and the first fraction
    // makes one.
    gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(bar), 0);
    return bar;
}

LEditWidgets NewEdit(bool readOnly, GtkPolicyType verticalScrollBar) {
    LEditWidgets edit{gtk_scrolled_window_new(nullptr, nullptr), gtk_text_view_new()};
    GtkTextView* view = GTK_TEXT_VIEW(edit.textView);
    gtk_text_view_set_left_margin(view, 2);
    gtk_text_view_set_right_margin(view, 2);
    gtk_text_view_set_wrap_mode(view, GTK_WRAP_WORD);
    gtk_text_view_set_editable(view, !readOnly);
    gtk_text_view_set_accepts_tab(view, FALSE);
    GtkScrolledWindow* scrolled = GTK_SCROLLED_WINDOW(edit.scrolledWindow);
    gtk_scrolled_window_set_policy(scrolled, GTK_POLICY_NEVER, verticalScrollBar);
    gtk_scrolled_window_set_shadow_type(scrolled, GTK_SHADOW_ETCHED_IN);
    gtk_container_add(GTK_CONTAINER(scrolled), edit.textView);
    return edit;
}
