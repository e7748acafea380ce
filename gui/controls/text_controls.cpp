#include "gui/controls/text_controls.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "foundation/numbers.h"
#include "gui/controls/prompt_text.h"
#include "gui/display_text.h"

GtkEntry* EntryOf(GtkWidget* control) {
    if (GTK_IS_COMBO_BOX(control) && gtk_combo_box_get_has_entry(GTK_COMBO_BOX(control)))
        control = gtk_bin_get_child(GTK_BIN(control));
    return GTK_IS_ENTRY(control) ? GTK_ENTRY(control) : nullptr;
}

namespace {

constexpr const char* kTextSetByProgram = "textset";

void GCTextChanged(GtkEditable* entry, gpointer host) {
    if (g_object_get_data(G_OBJECT(entry), kTextSetByProgram) == nullptr)
        DeliverStored(host, entry, "changed");
}

}  // namespace

void LTextControls::SetText(int id, const char* text) {
    GtkEntry* entry = EntryOf(GetControlByID(id));
    if (entry == nullptr)
        return;
    g_object_set_data(G_OBJECT(entry), kTextSetByProgram, entry);
    gtk_entry_set_text(entry, DisplayText(text).c_str());
    g_object_set_data(G_OBJECT(entry), kTextSetByProgram, nullptr);
}

void LTextControls::HandleTextChange(int id, int command) {
    if (GtkEntry* entry = EntryOf(GetControlByID(id))) {
        StoreCommand(entry, "changed", command, id);
        Connect(entry, "changed", G_CALLBACK(GCTextChanged));
    }
}

void LTextControls::GetText(int id, char* out, std::size_t size) const {
    GtkEntry* entry = EntryOf(GetControlByID(id));
    std::strncpy(out, entry != nullptr ? gtk_entry_get_text(entry) : "", size);
}

void LTextControls::GetText(int id, char (&out)[kTextBufferSize]) const {
    CopyShownText(out, GetText(id));
}

std::string LTextControls::GetText(int id) const {
    GtkEntry* entry = EntryOf(GetControlByID(id));
    return entry != nullptr ? gtk_entry_get_text(entry) : "";
}

int LTextControls::GetTextLength(int id) const {
    GtkEntry* entry = EntryOf(GetControlByID(id));
    return entry != nullptr ? gtk_entry_get_text_length(entry) : 0;
}

void LTextControls::GetTextAndTrim(int id, char (&out)[kTextBufferSize]) const {
    char text[kTextBufferSize];
    GetText(id, text);
    std::string_view trimmed(text);
    trimmed.remove_prefix(std::min(trimmed.find_first_not_of(' '), trimmed.size()));
    trimmed = trimmed.substr(0, trimmed.find_last_not_of(' ') + 1);
    CopyText(out, trimmed);
}

void LTextControls::SetInt(int id, int value) {
    SetText(id, std::to_string(value).c_str());
}

int LTextControls::GetInt(int id) const {
    char text[kTextBufferSize];
    GetText(id, text);
    return DecimalFromText(text);
}

void LTextControls::SetPasswordText(int id, const char* text) {
    if (GtkEntry* entry = EntryOf(GetControlByID(id))) {
        gtk_entry_set_visibility(entry, FALSE);
        SetText(id, text);
    }
}

void LTextControls::GetPasswordTextAndTrim(int id, char (&out)[kTextBufferSize]) const {
    GetTextAndTrim(id, out);
}

void LTextControls::SetTextSelection(int id, int start, int end) {
    if (GtkEntry* entry = EntryOf(GetControlByID(id)))
        gtk_editable_select_region(GTK_EDITABLE(entry), start, end);
}

void LTextControls::SetTextSelectionAll(int id) {
    SetTextSelection(id, 0, -1);
}

void LTextControls::SetTextEditable(int id, bool editable) {
    if (GtkEntry* entry = EntryOf(GetControlByID(id)))
        gtk_editable_set_editable(GTK_EDITABLE(entry), editable);
    else if (auto* view = ControlAs<GtkTextView>(id, GTK_TYPE_TEXT_VIEW))
        gtk_text_view_set_editable(view, editable);
}

bool LTextControls::IsTextEditable(int id) const {
    if (GtkEntry* entry = EntryOf(GetControlByID(id)))
        return gtk_editable_get_editable(GTK_EDITABLE(entry)) != FALSE;
    auto* view = ControlAs<GtkTextView>(id, GTK_TYPE_TEXT_VIEW);
    return view != nullptr && gtk_text_view_get_editable(view) != FALSE;
}

void LTextControls::TextPromptSet(int id, const char* text) {
    if (GtkEntry* entry = EntryOf(GetControlByID(id)))
        SetPromptText(GTK_WIDGET(entry), text);
}
