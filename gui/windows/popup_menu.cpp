#include "gui/windows/popup_menu.h"

namespace {

void PlaceUnder(GtkMenu*, gint* x, gint* y, gboolean* pushIn, gpointer data) {
    auto* button = static_cast<GtkWidget*>(data);
    GtkAllocation place;
    gtk_widget_get_allocation(button, &place);
    gdk_window_get_origin(gtk_widget_get_window(button), x, y);
    if (!gtk_widget_get_has_window(button)) {
        *x += place.x;
        *y += place.y;
    }
    *y += place.height;
    *pushIn = TRUE;
}

}  // namespace

void LWindow::PopupMenu::Clear() {
    if (menu_)
        EndWidget(menu_.Get());
    menu_.Reset();
}

void LWindow::PopupMenu::SetMenu(LMenuItems items) {
    Clear();
    std::size_t index = 0;
    LPopupMenuAdd(*this, items, index);
}

void LPopupMenuAdd(LWindow::PopupMenu& menu, LMenuItems items, std::size_t& index) {
    if (!menu.menu_) {
        menu.menu_ = GObjectRef<GtkWidget>::Share(gtk_menu_new());
        AddCallbacks(menu.menu_.Get(), menu.signals_.Callbacks());
    }
    AddMenuRows({menu.window_, menu.registry_, menu.signals_, nullptr, {}}, menu.menu_.Get(), items,
                index);
    gtk_widget_show_all(menu.menu_.Get());
}

void LWindow::PopupMenu::EnableMenuItem(int command, bool on) {
    if (GtkWidget* item = registry_.Find(command))
        gtk_widget_set_sensitive(item, on);
}

void LWindow::PopupMenu::CheckMenuItem(int command, bool on) {
    if (GtkWidget* item = registry_.Find(command); GTK_IS_CHECK_MENU_ITEM(item))
        gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(item), on);
}

void LWindow::PopupMenu::Popup() {
    if (!menu_)
        return;
    auto at = std::make_unique<GdkPoint>();
    gdk_display_get_pointer(gtk_widget_get_display(menu_.Get()), nullptr, &at->x, &at->y, nullptr);
    g_object_set_data_full(G_OBJECT(menu_.Get()), kMenuCameUp, at.release(),
                           [](gpointer point) { delete static_cast<GdkPoint*>(point); });
    gtk_menu_popup(GTK_MENU(menu_.Get()), nullptr, nullptr, nullptr, nullptr, 0,
                   gtk_get_current_event_time());
}

void LWindow::PopupMenu::PopupUnder(GtkWidget* button) {
    if (menu_ && button != nullptr && gtk_widget_get_window(button) != nullptr)
        gtk_menu_popup(GTK_MENU(menu_.Get()), nullptr, nullptr, PlaceUnder, button, 0,
                       gtk_get_current_event_time());
}
