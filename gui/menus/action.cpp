#include "gui/menus/action.h"

#include "gui/accessible.h"
#include "gui/control_focus.h"
#include "gui/menus/menu_builder.h"
#include "gui/mnemonic.h"

namespace {

void ShowLabel(GtkWidget* widget, const std::string& label) {
    // Menus have letters to choose an item by; elsewhere an "&" would be read.
    const std::string text = WithoutMnemonic(label.c_str());
    if (GTK_IS_MENU_ITEM(widget)) {
        gtk_menu_item_set_label(GTK_MENU_ITEM(widget), MnemonicText(label.c_str()).c_str());
    } else if (GTK_IS_TOOL_BUTTON(widget)) {
        gtk_tool_button_set_label(GTK_TOOL_BUTTON(widget), text.c_str());
        SetAccessibleName(gtk_bin_get_child(GTK_BIN(widget)), text.c_str());
    } else if (GtkWidget* child = GTK_IS_BIN(widget) ? gtk_bin_get_child(GTK_BIN(widget)) : nullptr;
               GTK_IS_LABEL(child)) {
        gtk_label_set_text(GTK_LABEL(child), text.c_str());
    }
    SetAccessibleName(widget, text.c_str());
}

}  // namespace

LAction::~LAction() {
    for (const Proxy& proxy : proxies_)
        g_signal_handlers_disconnect_by_func(proxy.widget, reinterpret_cast<gpointer>(GCDestroyed),
                                             this);
}

void LAction::AddProxy(GtkWidget* widget, WhenOff whenOff) {
    g_signal_connect(widget, "destroy", G_CALLBACK(GCDestroyed), this);
    proxies_.push_back({widget, whenOff});
    Show(proxies_.back());
}

void LAction::GCDestroyed(GtkWidget* widget, gpointer action) {
    static_cast<LAction*>(action)->Forget(widget);
}

void LAction::Forget(GtkWidget* widget) {
    // A widget that somebody holds may tell of its end more than once.
    g_signal_handlers_disconnect_by_func(widget, reinterpret_cast<gpointer>(GCDestroyed), this);
    std::erase_if(proxies_, [&](const Proxy& proxy) { return proxy.widget == widget; });
}

void LAction::SetEnabled(bool enabled) {
    isEnabled_ = enabled;
    ShowAll();
}

void LAction::SetChecked(bool checked) {
    isChecked_ = checked;
    ShowAll();
}

void LAction::SetLabel(const char* label) {
    label_ = label;
    ShowAll();
}

void LAction::ShowAll() const {
    for (const Proxy& proxy : proxies_)
        Show(proxy);
}

void LAction::Show(const Proxy& proxy) const {
    if (proxy.whenOff == WhenOff::kHidden)
        SetControlVisible(proxy.widget, isEnabled_);
    else
        SetControlSensitive(proxy.widget, isEnabled_);
    if (GTK_IS_CHECK_MENU_ITEM(proxy.widget))
        gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(proxy.widget), isChecked_);
    if (!label_.empty())
        ShowLabel(proxy.widget, label_);
}
