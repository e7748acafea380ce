#include "gui/main_window/status_bar.h"

#include "gui/accessible.h"
#include "gui/display_text.h"
#include "gui/gtk_children.h"

LStatusBar::~LStatusBar() {
    if (bar_ != nullptr)
        g_object_remove_weak_pointer(G_OBJECT(bar_), reinterpret_cast<gpointer*>(&bar_));
}

GtkWidget* LStatusBar::CreateStatusBar() {
    if (bar_ != nullptr)
        g_object_remove_weak_pointer(G_OBJECT(bar_), reinterpret_cast<gpointer*>(&bar_));
    bar_ = gtk_statusbar_new();
    g_object_add_weak_pointer(G_OBJECT(bar_), reinterpret_cast<gpointer*>(&bar_));
    gtk_statusbar_set_has_resize_grip(GTK_STATUSBAR(bar_), TRUE);
    // At least this high; a size request of the bar itself would cut off large letters.
    GtkWidget* strut = gtk_vbox_new(FALSE, 0);
    gtk_widget_set_size_request(strut, 0, kHeight);
    gtk_box_pack_end(GTK_BOX(bar_), strut, FALSE, FALSE, 0);
    return bar_;
}

void LStatusBar::AddToStatusBar(GtkWidget* widget) {
    gtk_widget_set_no_show_all(widget, TRUE);
    gtk_box_pack_end(GTK_BOX(bar_), widget, FALSE, FALSE, 0);
}

void LStatusBar::SetStatusText(const char* text) {
    if (bar_ == nullptr)
        return;
    GtkStatusbar* bar = GTK_STATUSBAR(bar_);
    const std::string shown = DisplayText(text);
    // A screen reader hears of each change, and drops news where there are too many.
    GtkWidget* label = LGtkChildren(gtk_statusbar_get_message_area(bar)).First();
    if (GTK_IS_LABEL(label) && shown == gtk_label_get_text(GTK_LABEL(label)))
        return;
    const guint context = gtk_statusbar_get_context_id(bar, "text");
    gtk_statusbar_pop(bar, context);
    gtk_statusbar_push(bar, context, shown.c_str());
}

void LStatusBar::TellStatusText(const char* text) {
    SetStatusText(text);
    SayBesideStatus(text);
}

void LStatusBar::SayBesideStatus(const char* text) {
    if (bar_ != nullptr && *text != '\0')
        TellScreenReader(bar_, DisplayText(text).c_str());
}
