// Column 0 of a list holds its text.
#include "gui/controls/drop_down_controls.h"

#include <algorithm>
#include <string_view>

#include "foundation/numbers.h"
#include "foundation/settings/settings.h"
#include "gui/controls/text_controls.h"
#include "gui/display_text.h"

namespace {

// The count comes from a file that anybody may have edited.
constexpr int kMaxAutoItems = 1000;

std::string RowText(GtkTreeModel* model, GtkTreeIter* row) {
    char* text = nullptr;
    gtk_tree_model_get(model, row, 0, &text, -1);
    std::string out = text != nullptr ? text : "";
    g_free(text);
    return out;
}

void GCDialogPDLChanged(GtkWidget* list, gpointer host) {
    DeliverStored(host, list, "changed");
}

std::string ItemKey(int number) {
    return "Item " + std::to_string(number);
}

}  // namespace

GtkListStore* LDropDownControls::ListOf(int id) const {
    auto* box = ControlAs<GtkComboBox>(id, GTK_TYPE_COMBO_BOX);
    GtkTreeModel* model = box != nullptr ? gtk_combo_box_get_model(box) : nullptr;
    return GTK_IS_LIST_STORE(model) ? GTK_LIST_STORE(model) : nullptr;
}

void LDropDownControls::PDLInit(int id) {
    auto* box = ControlAs<GtkComboBox>(id, GTK_TYPE_COMBO_BOX);
    if (box == nullptr)
        return;
    auto store = GObjectRef<GtkListStore>::Adopt(gtk_list_store_new(1, G_TYPE_STRING));
    gtk_combo_box_set_model(box, GTK_TREE_MODEL(store.Get()));
    if (gtk_combo_box_get_has_entry(box)) {
        gtk_combo_box_set_entry_text_column(box, 0);
    } else if (!GTK_IS_COMBO_BOX_TEXT(box)) {  // that one shows its text already
        GtkCellRenderer* cell = gtk_cell_renderer_text_new();
        gtk_cell_layout_clear(GTK_CELL_LAYOUT(box));
        gtk_cell_layout_pack_start(GTK_CELL_LAYOUT(box), cell, TRUE);
        gtk_cell_layout_set_attributes(GTK_CELL_LAYOUT(box), cell, "text", 0, nullptr);
    }
}

void LDropDownControls::PDLClear(int id) {
    if (GtkListStore* list = ListOf(id))
        gtk_list_store_clear(list);
}

void LDropDownControls::PDLAddString(int id, const char* text) {
    if (GtkListStore* list = ListOf(id))
        gtk_list_store_insert_with_values(list, nullptr, -1, 0, DisplayText(text).c_str(), -1);
}

void LDropDownControls::PDLFill(int id, const char* const* texts) {
    for (; *texts != nullptr; ++texts)
        PDLAddString(id, *texts);
}

int LDropDownControls::PDLGetCount(int id) const {
    GtkListStore* list = ListOf(id);
    return list != nullptr ? gtk_tree_model_iter_n_children(GTK_TREE_MODEL(list), nullptr) : 0;
}

int LDropDownControls::PDLGetCurSel(int id) const {
    auto* box = ControlAs<GtkComboBox>(id, GTK_TYPE_COMBO_BOX);
    return box != nullptr ? gtk_combo_box_get_active(box) : -1;
}

void LDropDownControls::PDLSetCurSel(int id, int item) {
    if (auto* box = ControlAs<GtkComboBox>(id, GTK_TYPE_COMBO_BOX))
        gtk_combo_box_set_active(box, item < -1 ? -1 : item);
}

void LDropDownControls::PDLGetText(int id, char (&out)[kTextBufferSize]) const {
    CopyShownText(out, PDLGetText(id));
}

std::string LDropDownControls::PDLGetText(int id) const {
    GtkEntry* entry = EntryOf(GetControlByID(id));
    return entry != nullptr ? gtk_entry_get_text(entry) : PDLGetItem(id, PDLGetCurSel(id));
}

std::string LDropDownControls::PDLGetItem(int id, int item) const {
    GtkListStore* list = ListOf(id);
    GtkTreeIter row;
    if (list == nullptr || item < 0 ||
        !gtk_tree_model_iter_nth_child(GTK_TREE_MODEL(list), &row, nullptr, item))
        return "";
    return RowText(GTK_TREE_MODEL(list), &row);
}

void LDropDownControls::PDLSetText(int id, const char* text) {
    PDLSetCurSel(id, PDLFindString(id, text));
    if (GtkEntry* entry = EntryOf(GetControlByID(id)))
        gtk_entry_set_text(entry, DisplayText(text).c_str());
}

int LDropDownControls::PDLFindString(int id, const char* text) const {
    const int count = PDLGetCount(id);
    const std::string wanted = DisplayText(text);
    for (int item = 0; item < count; ++item) {
        if (PDLGetItem(id, item) == wanted)
            return item;
    }
    return -1;
}

void LDropDownControls::PDLDeleteItem(int id, int item) {
    GtkListStore* list = ListOf(id);
    GtkTreeIter row;
    if (list != nullptr && item >= 0 &&
        gtk_tree_model_iter_nth_child(GTK_TREE_MODEL(list), &row, nullptr, item))
        gtk_list_store_remove(list, &row);
}

int LDropDownControls::PDLGetInt(int id) const {
    return DecimalFromText(PDLGetText(id).c_str());
}

void LDropDownControls::PDLSetInt(int id, int value) {
    PDLSetText(id, std::to_string(value).c_str());
}

void LDropDownControls::PDLAutoFill(int id, const char* section) {
    PDLClear(id);
    const int count = LUserSettingGetInt(section, "Count", 0);
    const int selected = LUserSettingGetInt(section, "Set", 0);
    for (int item = 1; item <= count && item <= kMaxAutoItems; ++item)
        PDLAddString(id, LUserSettingGet(section, ItemKey(item).c_str(), "").c_str());
    PDLSetCurSel(id, selected);
}

void LDropDownControls::PDLAutoGet(int id, const char* section) const {
    const int count = std::min(PDLGetCount(id), kMaxAutoItems);
    for (int item = 1; item <= count; ++item) {
        const std::string key = ItemKey(item);
        const std::string text = PDLGetItem(id, item - 1);
        if (LUserSettingGet(section, key.c_str(), "") != text)
            LUserSettingSetString(section, key.c_str(), text.c_str());
    }
    LUserSettingSetInt(section, "Count", count);
    LUserSettingSetInt(section, "Set", PDLGetCurSel(id));
}

void LDropDownControls::HandlePDLSelChange(int id, int command) {
    if (auto* list = ControlAs<GtkComboBox>(id, GTK_TYPE_COMBO_BOX)) {
        StoreCommand(list, "changed", command, id);
        Connect(list, "changed", G_CALLBACK(GCDialogPDLChanged));
    }
}
