#include "app/help/help_links.h"

#include "app/commands/command_numbers.h"
#include "foundation/processes/browser.h"
#include "foundation/settings/hosts.h"
#include "gui/gtk_children.h"

namespace {

// Behind a rule, and what the window itself does; the rest while there are such pages.
constexpr LMenuItem kOwnItems[] = {
    {0, nullptr},
    {kCheckComputer, "&Check This Computer..."},
    {kMoreVoices, "More &Voices..."},
};
constexpr LMenuItem kItems[] = {
    {9021, "Speech Engine and V&oices"},
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
    GtkWidget* menu = gtk_menu_item_get_submenu(GTK_MENU_ITEM(help));
    std::size_t index = 0;
    LMenuAdd(window, menu, kOwnItems, index, {});
    index = 0;
    if (HasWebSite())
        LMenuAdd(window, menu, kItems, index, {});
    gtk_widget_show_all(bar);
}

void LHelpLinks::Open(int command) {
    for (const auto& each : kPages) {
        if (each.command == command)
            OpenInBrowser(WebAddress(each.page));
    }
}
