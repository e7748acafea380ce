#include "gui/windows/menu_controls.h"

#include <gdk/gdkkeysyms.h>

#include <vector>

#include "foundation/settings/hosts.h"
#include "gui/content_box.h"
#include "gui/gtk_children.h"
#include "gui/menus/menu_builder.h"
#include "gui/mnemonic.h"
#include "gui/windows/window.h"

namespace {

constexpr LMenuItem kHelpItems[] = {
    {kCommandHelpContents, "&Help Contents"},
    {0, nullptr},
    {kCommandSupportPage, "&Troubleshooting"},
    {kCommandSuggestion, "&Suggestions"},
    {kCommandBugReport, "Report a &Bug"},
    {kCommandHomePage, "Quillon Home &Page"},
    {0, nullptr},
    {kCommandAbout, "&About Lectora..."},
};
constexpr LMenuItem kTrayExitItems[] = {
    {0, nullptr},
    {kCommandClose, "Exit (Close to Tray)"},
    {kCommandExit, "Exit (Turn Off)"},
};
constexpr LMenuItem kExitItems[] = {
    {0, nullptr},
    {kCommandClose, "Close"},
};
constexpr LKeyToCommandMap kStandardKeys[] = {
    {GDK_KEY_F1, kCommandHelpContents},
    {kKeyAlt | GDK_KEY_F4, kCommandClose},
};

gboolean GCMenuClicked(GtkWidget* title, GdkEventButton*, gpointer host) {
    DeliverStored(host, title, "menu_bar");
    return FALSE;  // the menu opens
}

// A key opens a menu by selecting its title. The pointer selects it too, after its press.
void GCMenuSelected(GtkWidget* title, gpointer host) {
    GdkEvent* event = gtk_get_current_event();
    if (event == nullptr)
        return;
    if (event->type == GDK_KEY_PRESS)
        DeliverStored(host, title, "menu_bar");
    gdk_event_free(event);
}

// Links to a web site that is not there lead nowhere.
std::vector<LMenuItem> HelpItems() {
    std::vector<LMenuItem> items;
    for (const LMenuItem& item : kHelpItems) {
        const bool isPage = item.command >= kCommandSupportPage && item.command <= kCommandHomePage;
        const bool isSecondRule =
            item.text == nullptr && !items.empty() && items.back().text == nullptr;
        if (!isSecondRule && (!isPage || HasWebSite()))
            items.push_back(item);
    }
    return items;
}

}  // namespace

GtkWidget* LMenuControls::MenuBar() const {
    GtkWidget* window = TopWidget();
    return window != nullptr
               ? static_cast<GtkWidget*>(g_object_get_data(G_OBJECT(window), "menu_bar"))
               : nullptr;
}

void LMenuControls::AddRows(GtkWidget* menu, LMenuItems items, std::size_t& index, LKeyMap keys) {
    const std::size_t begin = index;
    AddMenuRows({*this, Registry(), Signals(), Accelerators(), keys}, menu, items, index);
    for (const LMenuItem& row : items.subspan(begin, index - begin)) {
        const int command = row.command < -1 ? -row.command : row.command;
        if (const LKeyCode key = KeyOfCommand(keys, command))
            menuKeys_.push_back({key, command});
    }
}

void LMenuContainer::SetMenu(LWindow& window, LMenuItems items, LKeyMap keys) {
    GtkWidget* content = ContentBox(window.Widget());
    if (content == nullptr)
        return;
    GtkWidget* bar = gtk_menu_bar_new();
    gtk_box_pack_start(GTK_BOX(content), bar, FALSE, FALSE, 0);
    gtk_box_reorder_child(GTK_BOX(content), bar, 0);
    for (std::size_t index = 0; index < items.size();) {
        const LMenuItem& title = items[index++];
        if (title.command == -1 && title.text != nullptr)
            window.AddRows(AddSubMenu(bar, title.text), items, index, keys);
    }
    g_object_set_data(G_OBJECT(window.Widget()), "menu_bar", bar);
    gtk_widget_show_all(bar);
}

void LMenuAdd(LWindow& window, GtkWidget* menu, LMenuItems items, std::size_t& index,
              LKeyMap keys) {
    static_cast<LMenuControls&>(window).AddRows(menu, items, index, keys);
}

void LMenuControls::AddStandardMenuItems(bool withTray) {
    GtkWidget* bar = MenuBar();
    if (bar == nullptr)
        return;
    std::size_t index = 0;
    AddRows(AddSubMenu(bar, "&Help"), HelpItems(), index, kStandardKeys);
    const LGtkChildren titles(bar);
    index = 0;
    AddRows(gtk_menu_item_get_submenu(GTK_MENU_ITEM(titles.First())),
            withTray ? LMenuItems(kTrayExitItems) : LMenuItems(kExitItems), index, kStandardKeys);
    gtk_widget_show_all(bar);
}

void LMenuControls::SetMenuCommandHandler(GtkWidget* item, int command) {
    ConnectMenuItem({*this, Registry(), Signals(), nullptr, {}}, item, command);
}

void LMenuControls::EnableMenuItem(int command, bool on) {
    if (GtkWidget* item = GetControlByID(command))
        gtk_widget_set_sensitive(item, on);
}

void LMenuControls::EnableMenuItems(std::span<const int> commands, bool on) {
    for (const int command : commands)
        EnableMenuItem(command, on);
}

void LMenuControls::CheckMenuItem(int command, bool on) {
    if (auto* item = ControlAs<GtkCheckMenuItem>(command, GTK_TYPE_CHECK_MENU_ITEM))
        gtk_check_menu_item_set_active(item, on);
}

int LMenuControls::CheckSubMenu(GtkWidget* menu, const char* text) {
    int position = 0;
    for (GtkWidget* item : LGtkChildren(menu)) {
        const char* label = gtk_menu_item_get_label(GTK_MENU_ITEM(item));
        if (gtk_menu_item_get_submenu(GTK_MENU_ITEM(item)) != nullptr &&
            label == MnemonicText(text))
            return position;
        ++position;
    }
    return -1;
}

GtkWidget* LMenuControls::_GetMenuItem(GtkWidget* menu, int command, int& position) {
    position = 0;
    for (GtkWidget* item : LGtkChildren(menu)) {
        if (command != 0 && StoredCommand(item, "_cmd") == command)
            return item;
        ++position;
    }
    position = -1;
    return nullptr;
}

void LMenuControls::HandleInitMenu(int command) {
    GtkWidget* bar = MenuBar();
    if (bar == nullptr)
        return;
    for (GtkWidget* title : LGtkChildren(bar)) {
        StoreCommand(title, "menu_bar", command, command);
        Connect(title, "button-press-event", G_CALLBACK(GCMenuClicked));
        Connect(title, "select", G_CALLBACK(GCMenuSelected));
    }
}

bool LMenuControls::CheckMenuAccelerators(LKeyCode key) {
    const int command = CommandOfKey(menuKeys_, key);
    GtkWidget* item = command != 0 ? GetControlByID(command) : nullptr;
    if (item == nullptr || !gtk_widget_get_sensitive(item))
        return false;
    WMCommand(command);
    return true;
}

GtkRequisition LMenuControls::MenuBarSize() const {
    GtkRequisition size{};
    GtkWidget* bar = MenuBar();
    if (bar != nullptr && gtk_widget_get_visible(bar))
        gtk_widget_size_request(bar, &size);
    return size;
}
