#include "gui/controls/tab_controls.h"

#include <algorithm>
#include <utility>

#include "gui/display_text.h"

namespace {

void GCTABSwitch(GtkWidget* tabs, gpointer, guint, gpointer host) {
    DeliverStored(host, tabs, "switch-page");
}

}  // namespace

void LTabControls::TABInit(int id) {
    TABClear(id);
    if (auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK)) {
        gtk_notebook_set_show_tabs(tabs, TRUE);
        gtk_notebook_set_scrollable(tabs, TRUE);
    }
}

// The page stays empty: what a tab shows is laid over the notebook by its window.
void LTabControls::TABInsertTab(int id, int position, const char* text) {
    auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK);
    if (tabs == nullptr)
        return;
    GtkWidget* page = gtk_fixed_new();
    gtk_widget_show(page);
    gtk_notebook_insert_page(tabs, page, gtk_label_new(DisplayText(text).c_str()), position);
}

void LTabControls::TABClear(int id) {
    if (auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK)) {
        while (gtk_notebook_get_n_pages(tabs) > 0)
            gtk_notebook_remove_page(tabs, -1);
    }
}

int LTabControls::TABGetCount(int id) const {
    auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK);
    return tabs != nullptr ? gtk_notebook_get_n_pages(tabs) : 0;
}

int LTabControls::TABGetCurSel(int id) const {
    auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK);
    return tabs != nullptr ? gtk_notebook_get_current_page(tabs) : -1;
}

void LTabControls::TABSetCurSel(int id, int tab) {
    if (auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK); tabs != nullptr && tab >= 0)
        gtk_notebook_set_current_page(tabs, tab);
}

void LTabControls::TABGetText(int id, int tab, char (&out)[kTextBufferSize]) const {
    auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK);
    GtkWidget* page = tabs != nullptr && tab >= 0 ? gtk_notebook_get_nth_page(tabs, tab) : nullptr;
    const char* text = page != nullptr ? gtk_notebook_get_tab_label_text(tabs, page) : nullptr;
    CopyShownText(out, text != nullptr ? text : "");
}

int LTabControls::TABGetTabHeight(int id) const {
    auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK);
    GtkWidget* page = tabs != nullptr ? gtk_notebook_get_nth_page(tabs, 0) : nullptr;
    if (page == nullptr)
        return 0;
    GtkRequisition label;
    gtk_widget_size_request(gtk_notebook_get_tab_label(tabs, page), &label);
    return label.height + 2 * gtk_widget_get_style(GTK_WIDGET(tabs))->ythickness;
}

void LTabControls::HandleTABSelChange(int id, int command) {
    auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK);
    if (tabs == nullptr)
        return;
    StoreCommand(tabs, "switch-page", command, id);
    Connect(tabs, "switch-page", G_CALLBACK(GCTABSwitch), G_CONNECT_AFTER);
    if (GtkWidget* window = TopWidget(); window != nullptr && !std::ranges::count(unlaid_, id)) {
        const gulong handler = Connect(window, "configure-event", G_CALLBACK(GCTABFirstLayout));
        g_object_set_data(G_OBJECT(tabs), "_configureTAB", GSIZE_TO_POINTER(handler));
        unlaid_.push_back(id);
    }
}

gboolean LTabControls::GCTABFirstLayout(GtkWidget* window, GdkEvent*, gpointer host) {
    auto& self = dynamic_cast<LTabControls&>(HostOf(host));
    const std::weak_ptr<const void> life = self.Life();
    g_signal_handlers_disconnect_by_func(window, reinterpret_cast<gpointer>(GCTABFirstLayout),
                                         host);
    for (const int id : std::exchange(self.unlaid_, {})) {
        GtkWidget* tabs = life.expired() ? nullptr : self.GetControlByID(id);
        if (tabs != nullptr)
            DeliverStored(host, tabs, "switch-page");
    }
    return FALSE;
}
