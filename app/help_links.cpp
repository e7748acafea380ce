#include "app/help_links.h"

#include "foundation/browser.h"
#include "foundation/hosts.h"
#include "gui/gtk_children.h"

namespace {

constexpr LMenuItem kItems[] = {
    {0, nullptr},
    {9021, "Speech Engine and &Voices"},
    {9022, "&News and Downloads"},
};
constexpr struct {
    int command;
    const char* page;
} kPages[] = {
    {9021, "speech"},
    {9022, "lectora/download"},
};

}  // namespace

void LHelpLinks::SetUp(LWindow& window) {
    auto* bar = static_cast<GtkWidget*>(g_object_get_data(G_OBJECT(window.Widget()), "menu_bar"));
    GtkWidget* help = nullptr;
    for (GtkWidget* title : LGtkChildren(bar))
        help = title;
    std::size_t index = 0;
    LMenuAdd(window, gtk_menu_item_get_submenu(GTK_MENU_ITEM(help)), kItems, index, {});
    gtk_widget_show_all(bar);
}

void LHelpLinks::Open(int command) {
    for (const auto& each : kPages) {
        if (each.command == command)
            OpenInBrowser(WebAddress(each.page));
    }
}
