// Single-line entries, static text, buttons and check boxes.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "foundation/numbers.h"
#include "gui/accessible.h"
#include "gui/display_text.h"
#include "gui/icons.h"
#include "gui/window.h"

GtkEntry* LWindow::EntryOf(int id) const {
    GtkWidget* control = GetControlByID(id);
    if (GTK_IS_COMBO_BOX(control) && gtk_combo_box_get_has_entry(GTK_COMBO_BOX(control)))
        control = gtk_bin_get_child(GTK_BIN(control));
    return GTK_IS_ENTRY(control) ? GTK_ENTRY(control) : nullptr;
}

void LWindow::SetText(int id, const char* text) {
    if (GtkEntry* entry = EntryOf(id))
        gtk_entry_set_text(entry, DisplayText(text).c_str());
}

void LWindow::GetText(int id, char* out, std::size_t size) const {
    GtkEntry* entry = EntryOf(id);
    std::strncpy(out, entry != nullptr ? gtk_entry_get_text(entry) : "", size);
}

void LWindow::GetText(int id, char (&out)[kTextBufferSize]) const {
    CopyText(out, GetText(id));
}

std::string LWindow::GetText(int id) const {
    GtkEntry* entry = EntryOf(id);
    return entry != nullptr ? gtk_entry_get_text(entry) : "";
}

int LWindow::GetTextLength(int id) const {
    GtkEntry* entry = EntryOf(id);
    return entry != nullptr ? gtk_entry_get_text_length(entry) : 0;
}

void LWindow::GetTextAndTrim(int id, char (&out)[kTextBufferSize]) const {
    char text[kTextBufferSize];
    GetText(id, text);
    std::string_view trimmed(text);
    trimmed.remove_prefix(std::min(trimmed.find_first_not_of(' '), trimmed.size()));
    trimmed = trimmed.substr(0, trimmed.find_last_not_of(' ') + 1);
    CopyText(out, trimmed);
}

void LWindow::SetInt(int id, int value) {
    SetText(id, std::to_string(value).c_str());
}

int LWindow::GetInt(int id) const {
    char text[kTextBufferSize];
    GetText(id, text);
    return DecimalFromText(text);
}

void LWindow::SetPasswordText(int id, const char* text) {
    if (GtkEntry* entry = EntryOf(id)) {
        gtk_entry_set_visibility(entry, FALSE);
        gtk_entry_set_text(entry, DisplayText(text).c_str());
    }
}

void LWindow::GetPasswordTextAndTrim(int id, char (&out)[kTextBufferSize]) const {
    GetTextAndTrim(id, out);
}

void LWindow::SetTextSelection(int id, int start, int end) {
    if (GtkEntry* entry = EntryOf(id))
        gtk_editable_select_region(GTK_EDITABLE(entry), start, end);
}

void LWindow::SetTextSelectionAll(int id) {
    SetTextSelection(id, 0, -1);
}

void LWindow::SetTextEditable(int id, bool editable) {
    if (GtkEntry* entry = EntryOf(id))
        gtk_editable_set_editable(GTK_EDITABLE(entry), editable);
    else if (auto* view = ControlAs<GtkTextView>(id, GTK_TYPE_TEXT_VIEW))
        gtk_text_view_set_editable(view, editable);
}

bool LWindow::IsTextEditable(int id) const {
    if (GtkEntry* entry = EntryOf(id))
        return gtk_editable_get_editable(GTK_EDITABLE(entry)) != FALSE;
    auto* view = ControlAs<GtkTextView>(id, GTK_TYPE_TEXT_VIEW);
    return view != nullptr && gtk_text_view_get_editable(view) != FALSE;
}

void LWindow::SetStaticText(int id, const char* text) {
    if (auto* label = ControlAs<GtkLabel>(id, GTK_TYPE_LABEL))
        gtk_label_set_text(label, DisplayText(text).c_str());
}

void LWindow::SetButtonText(int id, const char* text) {
    if (auto* button = ControlAs<GtkButton>(id, GTK_TYPE_BUTTON)) {
        gtk_button_set_label(button, DisplayText(text).c_str());
        SetAccessibleName(GTK_WIDGET(button), gtk_button_get_label(button));
    }
}

void LWindow::SetButtonImage(int id, int imageNumber) {
    if (auto* button = ControlAs<GtkButton>(id, GTK_TYPE_BUTTON))
        gtk_button_set_image(button, NewIconImage(imageNumber));
}

void LWindow::SetCheck(int id, bool checked) {
    if (auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON))
        gtk_toggle_button_set_active(button, checked);
}

bool LWindow::GetCheck(int id) const {
    auto* button = ControlAs<GtkToggleButton>(id, GTK_TYPE_TOGGLE_BUTTON);
    return button != nullptr && gtk_toggle_button_get_active(button) != FALSE;
}
