#include "gui/menus/menu_builder.h"

#include <cmath>

#include "gui/icons.h"
#include "gui/mnemonic.h"

namespace {

constexpr int kMenuImageSize = 16;

// The menu goes first: the command may open a dialog, which could not be used under it.
void Choose(GtkWidget* item, gpointer host) {
    GtkWidget* shell = gtk_widget_get_parent(item);
    if (GTK_IS_MENU_SHELL(shell))
        gtk_menu_shell_deactivate(GTK_MENU_SHELL(shell));
    HostOf(host).WMCommand(StoredCommand(item, "_cmd"));
}

gboolean GCWindowMenuItemClicked(GtkWidget* item, GdkEventButton* event, gpointer host) {
    if (event->type == GDK_BUTTON_PRESS)
        Choose(item, host);
    return TRUE;
}

// The pointer is where it was when the menu came up under it: that is still the click that asked
// for the menu.
bool IsWhereMenuCameUp(GtkWidget* menu, const GdkEventButton& event) {
    constexpr int kStill = 4;  // pixels
    const auto* at = static_cast<const GdkPoint*>(g_object_get_data(G_OBJECT(menu), kMenuCameUp));
    return at != nullptr && std::abs(event.x_root - at->x) <= kStill &&
           std::abs(event.y_root - at->y) <= kStill;
}

// After a press elsewhere, on a menu's title or on the button that drops it down: a press on the
// item itself has chosen it, and taken the menu away.
gboolean GCWindowMenuItemReleased(GtkWidget* item, GdkEventButton* event, gpointer host) {
    if (!gtk_widget_is_sensitive(item) || IsWhereMenuCameUp(gtk_widget_get_parent(item), *event))
        return FALSE;
    Choose(item, host);
    return TRUE;
}

// Accelerators, a check item that is set and assistive programs activate items too. Keys reach the
// window by its key map, so that a command sent from here would run twice.
void GCMenuItemActive(GtkMenuItem*, gpointer) {}

// Enter or space in an open menu. It ends here: GTK would go on to activate the item.
void GCActivateCurrent(GtkMenuShell* menu, gboolean, gpointer host) {
    GtkWidget* item = menu->active_menu_item;
    if (item == nullptr || StoredCommand(item, "_cmd") == 0 || !gtk_widget_is_sensitive(item))
        return;
    g_signal_stop_emission_by_name(menu, "activate-current");
    Choose(item, host);
}

// The item's letter in an open menu. Where several items have it, GTK goes from one to the next.
gboolean GCItemLetter(GtkWidget* item, gboolean shared, gpointer host) {
    if (shared)
        return FALSE;
    Choose(item, host);
    return TRUE;
}

GtkWidget* NewItem(const LMenuItem& row, bool first) {
    const std::string text = MnemonicText(row.text);
    if (row.command < -1)
        return gtk_check_menu_item_new_with_mnemonic(text.c_str());
    GtkWidget* item = gtk_image_menu_item_new_with_mnemonic(text.c_str());
    if (first)
        gtk_image_menu_item_set_image(GTK_IMAGE_MENU_ITEM(item),
                                      NewIconImageAt(kMenuIcon, kMenuImageSize));
    return item;
}

}  // namespace

void ConnectMenuItem(const LMenuOwner& owner, GtkWidget* item, int command) {
    owner.registry.Add(item, command);
    StoreCommand(item, "_cmd", command, command);
    owner.signals.Connect(item, "button-press-event", G_CALLBACK(GCWindowMenuItemClicked),
                          &owner.host);
    owner.signals.Connect(item, "button-release-event", G_CALLBACK(GCWindowMenuItemReleased),
                          &owner.host);
    owner.signals.Connect(item, "activate", G_CALLBACK(GCMenuItemActive), &owner.host);
    owner.signals.Connect(item, "mnemonic-activate", G_CALLBACK(GCItemLetter), &owner.host);
}

GtkWidget* AddSubMenu(GtkWidget* shell, const char* title) {
    GtkWidget* item = gtk_menu_item_new_with_mnemonic(MnemonicText(title).c_str());
    GtkWidget* menu = gtk_menu_new();
    gtk_menu_item_set_submenu(GTK_MENU_ITEM(item), menu);
    gtk_menu_shell_append(GTK_MENU_SHELL(shell), item);
    return menu;
}

void AddMenuRows(const LMenuOwner& owner, GtkWidget* menu, LMenuItems items, std::size_t& index) {
    owner.signals.Connect(menu, "activate-current", G_CALLBACK(GCActivateCurrent), &owner.host);
    bool first = true;
    while (index < items.size()) {
        const LMenuItem& row = items[index++];
        if (row.text == nullptr) {
            if (row.command == -1)
                return;
            gtk_menu_shell_append(GTK_MENU_SHELL(menu), gtk_separator_menu_item_new());
            continue;
        }
        if (row.command == -1) {
            AddMenuRows(owner, AddSubMenu(menu, row.text), items, index);
            continue;
        }
        GtkWidget* item = NewItem(row, first);
        first = false;
        const int command = row.command < -1 ? -row.command : row.command;
        const LKeyCode key = KeyOfCommand(owner.keys, command);
        if (key != 0 && owner.accelerators != nullptr)
            gtk_widget_add_accelerator(item, "activate", owner.accelerators, KeyValue(key),
                                       KeyModifiers(key), GTK_ACCEL_VISIBLE);
        ConnectMenuItem(owner, item, command);
        gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
    }
}
