// Tabs, scroll and track bars, up-down fields, progress bars and cool buttons.
#include <algorithm>

#include "gui/cool_button.h"
#include "gui/display_text.h"
#include "gui/window.h"
#include "gui/window_callbacks.h"

void LWindow::TABInit(int id) {
    TABClear(id);
    if (auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK)) {
        gtk_notebook_set_show_tabs(tabs, TRUE);
        gtk_notebook_set_scrollable(tabs, TRUE);
    }
}

// The page stays empty: what a tab shows is laid over the notebook by its window.
void LWindow::TABInsertTab(int id, int position, const char* text) {
    auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK);
    if (tabs == nullptr)
        return;
    GtkWidget* page = gtk_fixed_new();
    gtk_widget_show(page);
    gtk_notebook_insert_page(tabs, page, gtk_label_new(DisplayText(text).c_str()), position);
}

void LWindow::TABClear(int id) {
    if (auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK)) {
        while (gtk_notebook_get_n_pages(tabs) > 0)
            gtk_notebook_remove_page(tabs, -1);
    }
}

int LWindow::TABGetCount(int id) const {
    auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK);
    return tabs != nullptr ? gtk_notebook_get_n_pages(tabs) : 0;
}

int LWindow::TABGetCurSel(int id) const {
    auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK);
    return tabs != nullptr ? gtk_notebook_get_current_page(tabs) : -1;
}

void LWindow::TABSetCurSel(int id, int tab) {
    if (auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK); tabs != nullptr && tab >= 0)
        gtk_notebook_set_current_page(tabs, tab);
}

void LWindow::TABGetText(int id, int tab, char (&out)[kTextBufferSize]) const {
    auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK);
    GtkWidget* page = tabs != nullptr && tab >= 0 ? gtk_notebook_get_nth_page(tabs, tab) : nullptr;
    const char* text = page != nullptr ? gtk_notebook_get_tab_label_text(tabs, page) : nullptr;
    CopyText(out, text != nullptr ? text : "");
}

int LWindow::TABGetTabHeight(int id) const {
    auto* tabs = ControlAs<GtkNotebook>(id, GTK_TYPE_NOTEBOOK);
    GtkWidget* page = tabs != nullptr ? gtk_notebook_get_nth_page(tabs, 0) : nullptr;
    if (page == nullptr)
        return 0;
    GtkRequisition label;
    gtk_widget_size_request(gtk_notebook_get_tab_label(tabs, page), &label);
    return label.height + 2 * gtk_widget_get_style(GTK_WIDGET(tabs))->ythickness;
}

void LWindow::SBSetRange(int id, int low, int high, int page) {
    auto* range = ControlAs<GtkRange>(id, GTK_TYPE_RANGE);
    if (range == nullptr)
        return;
    const int top = std::max(high, low);
    const int size = std::max(page, 1);
    gtk_range_set_increments(range, 1, size);
    GtkAdjustment* adjustment = gtk_range_get_adjustment(range);
    gtk_adjustment_set_page_size(adjustment, size);
    gtk_range_set_range(range, low, static_cast<double>(top) + size);
}

void LWindow::SBSetPos(int id, int position) {
    if (auto* range = ControlAs<GtkRange>(id, GTK_TYPE_RANGE))
        gtk_range_set_value(range, position);
}

int LWindow::SBGetPos(int id) const {
    auto* range = ControlAs<GtkRange>(id, GTK_TYPE_RANGE);
    return range != nullptr ? static_cast<int>(gtk_range_get_value(range)) : 0;
}

void LWindow::TBSetRange(int id, int low, int high) {
    if (auto* range = ControlAs<GtkRange>(id, GTK_TYPE_RANGE)) {
        gtk_range_set_increments(range, 1, 1);
        gtk_adjustment_set_page_size(gtk_range_get_adjustment(range), 0);
        gtk_range_set_range(range, low, std::max(high, low));
    }
}

void LWindow::UDInit(int id, int low, int high, int value) {
    if (auto* field = ControlAs<GtkSpinButton>(id, GTK_TYPE_SPIN_BUTTON)) {
        gtk_spin_button_set_digits(field, 0);
        gtk_spin_button_set_numeric(field, TRUE);
        gtk_spin_button_set_increments(field, 1, 10);
        gtk_spin_button_set_range(field, low, std::max(high, low));
        gtk_spin_button_set_value(field, value);
    }
}

int LWindow::UDGetInt(int id) const {
    auto* field = ControlAs<GtkSpinButton>(id, GTK_TYPE_SPIN_BUTTON);
    if (field == nullptr)
        return 0;
    gtk_spin_button_update(field);  // typed text counts before the focus leaves the field
    return gtk_spin_button_get_value_as_int(field);
}

void LWindow::UDSetInt(int id, int value) {
    if (auto* field = ControlAs<GtkSpinButton>(id, GTK_TYPE_SPIN_BUTTON))
        gtk_spin_button_set_value(field, value);
}

void LWindow::UDEnable(int id, bool enabled) {
    if (auto* field = ControlAs<GtkSpinButton>(id, GTK_TYPE_SPIN_BUTTON))
        gtk_widget_set_sensitive(GTK_WIDGET(field), enabled);
}

void LWindow::PBSetProgress(int id, double fraction) {
    if (auto* bar = ControlAs<GtkProgressBar>(id, GTK_TYPE_PROGRESS_BAR))
        gtk_progress_bar_set_fraction(bar, std::clamp(fraction, 0.0, 1.0));
}

void LWindow::PBSetText(int id, const char* text) {
    if (auto* bar = ControlAs<GtkProgressBar>(id, GTK_TYPE_PROGRESS_BAR))
        gtk_progress_bar_set_text(bar, DisplayText(text).c_str());
}

void LWindow::CoolButtonInit(int id, int imageNumber, const char* text) {
    if (auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON))
        InitCoolButton(button, LCoolButtonKind::kPush, imageNumber, text, id,
                       LWindowCallbacks::CoolButtonClicked, this);
}

void LWindow::CoolButtonInitUpDown(int id, int imageNumber, const char* text) {
    if (auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON))
        InitCoolButton(button, LCoolButtonKind::kUpDown, imageNumber, text, id,
                       LWindowCallbacks::CoolButtonClicked, this);
}

void LWindow::SetCoolButtonDown(int id) {
    if (auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON))
        SetCoolButtonState(button, true);
}

void LWindow::SetCoolButtonUp(int id) {
    if (auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON))
        SetCoolButtonState(button, false);
}

bool LWindow::IsCoolButtonDown(int id) const {
    return GetCheck(id);
}
