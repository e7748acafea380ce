#include "gui/list_view_controls.h"

#include <algorithm>
#include <string>
#include <vector>

#include "foundation/settings.h"
#include "gui/display_text.h"

namespace {

constexpr int kFallbackWidth = 400;  // of a list that has no size yet

GtkListStore* StoreOf(GtkTreeView* view) {
    GtkTreeModel* model = view != nullptr ? gtk_tree_view_get_model(view) : nullptr;
    return GTK_IS_LIST_STORE(model) ? GTK_LIST_STORE(model) : nullptr;
}

bool RowOf(GtkTreeView* view, int row, GtkTreeIter& out) {
    GtkListStore* store = StoreOf(view);
    return store != nullptr && row >= 0 &&
           gtk_tree_model_iter_nth_child(GTK_TREE_MODEL(store), &out, nullptr, row);
}

int ColumnsOf(GtkTreeView* view) {
    GtkListStore* store = StoreOf(view);
    return store != nullptr ? gtk_tree_model_get_n_columns(GTK_TREE_MODEL(store)) - kListStoreText
                            : 0;
}

// A text column by its number; null when unknown.
GtkTreeViewColumn* ColumnOf(GtkTreeView* view, int column) {
    if (column < 0 || column >= ColumnsOf(view))
        return nullptr;
    const int before = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(view), "iCheck"));
    return gtk_tree_view_get_column(view, column + before);
}

std::string CellText(GtkTreeView* view, int row, int column) {
    GtkTreeIter iter;
    if (column < 0 || column >= ColumnsOf(view) || !RowOf(view, row, iter))
        return "";
    char* text = nullptr;
    gtk_tree_model_get(GTK_TREE_MODEL(StoreOf(view)), &iter, kListStoreText + column, &text, -1);
    std::string out = text != nullptr ? text : "";
    g_free(text);
    return out;
}

void GCDialogListViewCurChanged(GtkWidget* list, gpointer host) {
    DeliverStored(host, list, "cursor-changed");
}

void GCDialogListViewRowActivated(GtkWidget* list, GtkTreePath*, GtkTreeViewColumn*,
                                  gpointer host) {
    DeliverStored(host, list, "row-doubleclicked");
}

std::string WidthKey(int column) {
    return "Col" + std::to_string(column + 1);
}

int InitialWidth(GtkTreeView* view, const LListColumns& columns, std::size_t column) {
    const int width = columns.columns[column].width;
    if (columns.sizing == LListColumns::kPercent) {
        GtkAllocation place;
        gtk_widget_get_allocation(GTK_WIDGET(view), &place);
        return std::max(1, (place.width > 1 ? place.width : kFallbackWidth) * width / 100);
    }
    if (columns.sizing == LListColumns::kStoredPixels)
        return LUserSettingGetInt(columns.section, WidthKey(static_cast<int>(column)).c_str(),
                                  width);
    return width;
}

void AddTextColumn(GtkTreeView* view, const LListColumns& columns, std::size_t index) {
    GtkCellRenderer* cell = gtk_cell_renderer_text_new();
    GtkTreeViewColumn* column = gtk_tree_view_column_new_with_attributes(
        DisplayText(columns.columns[index].name).c_str(), cell, "text",
        kListStoreText + static_cast<int>(index), nullptr);
    gtk_tree_view_column_set_resizable(column, TRUE);
    if (columns.sizing != LListColumns::kDynamic) {
        gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
        gtk_tree_view_column_set_fixed_width(column,
                                             std::max(1, InitialWidth(view, columns, index)));
    }
    gtk_tree_view_append_column(view, column);
}

void GCCheckToggled(GtkCellRendererToggle*, gchar* path, gpointer view) {
    GtkListStore* store = StoreOf(GTK_TREE_VIEW(view));
    GtkTreeIter row;
    if (store == nullptr || !gtk_tree_model_get_iter_from_string(GTK_TREE_MODEL(store), &row, path))
        return;
    gboolean checked = FALSE;
    gtk_tree_model_get(GTK_TREE_MODEL(store), &row, kListStoreCheck, &checked, -1);
    gtk_list_store_set(store, &row, kListStoreCheck, !checked, -1);
}

void AddCheckColumn(GtkTreeView* view) {
    GtkCellRenderer* cell = gtk_cell_renderer_toggle_new();
    g_signal_connect(cell, "toggled", G_CALLBACK(GCCheckToggled), view);
    gtk_tree_view_append_column(view, gtk_tree_view_column_new_with_attributes(
                                          "", cell, "active", kListStoreCheck, nullptr));
}

}  // namespace

GtkTreeView* LListViewControls::ListViewOf(int id) const {
    return ControlAs<GtkTreeView>(id, GTK_TYPE_TREE_VIEW);
}

void LListViewControls::LVInit(int id, const LListColumns& columns) {
    GtkTreeView* view = ListViewOf(id);
    if (view == nullptr)
        return;
    while (GtkTreeViewColumn* old = gtk_tree_view_get_column(view, 0))
        gtk_tree_view_remove_column(view, old);
    std::vector<GType> types(kListStoreText + columns.columns.size(), G_TYPE_STRING);
    types[kListStoreCheck] = G_TYPE_BOOLEAN;
    types[kListStoreData] = G_TYPE_INT;
    const auto store = GObjectRef<GtkListStore>::Adopt(
        gtk_list_store_newv(static_cast<gint>(types.size()), types.data()));
    gtk_tree_view_set_model(view, GTK_TREE_MODEL(store.Get()));
    if (LVIsStyleCheck(id))
        AddCheckColumn(view);
    for (std::size_t column = 0; column < columns.columns.size(); ++column)
        AddTextColumn(view, columns, column);
    // What LVDestroy needs of the description: the section, where widths are to be kept.
    const bool stored = columns.sizing == LListColumns::kStoredPixels;
    g_object_set_data_full(G_OBJECT(view), "colSet", stored ? g_strdup(columns.section) : nullptr,
                           g_free);
}

void LListViewControls::LVDestroy(int id) {
    GtkTreeView* view = ListViewOf(id);
    const auto* section =
        view != nullptr ? static_cast<char*>(g_object_get_data(G_OBJECT(view), "colSet")) : nullptr;
    if (section == nullptr)
        return;
    for (int column = 0; column < ColumnsOf(view); ++column) {
        // A list that was never shown has no widths of its own.
        if (const int width = LVGetColumnWidth(id, column); width > 0)
            LUserSettingSetInt(section, WidthKey(column).c_str(), width);
    }
}

void LListViewControls::LVSetStyleCheck(int id) {
    if (GtkTreeView* view = ListViewOf(id))
        g_object_set_data(G_OBJECT(view), "iCheck", GINT_TO_POINTER(1));
}

bool LListViewControls::LVIsStyleCheck(int id) const {
    GtkTreeView* view = ListViewOf(id);
    return view != nullptr && g_object_get_data(G_OBJECT(view), "iCheck") != nullptr;
}

int LListViewControls::LVAddString(int id, const char* text, int data) {
    return LVInsertString(id, LVGetCount(id), text, data);
}

int LListViewControls::LVInsertString(int id, int row, const char* text, int data) {
    GtkListStore* store = StoreOf(ListViewOf(id));
    if (store == nullptr || row < 0)
        return -1;
    const int place = std::min(row, LVGetCount(id));
    gtk_list_store_insert_with_values(store, nullptr, place, kListStoreText,
                                      DisplayText(text).c_str(), kListStoreData, data, -1);
    return place;
}

void LListViewControls::LVSetString(int id, int row, const char* text) {
    LVSetColumnString(id, row, 0, text);
}

void LListViewControls::LVSetColumnString(int id, int row, int column, const char* text) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (column >= 0 && column < ColumnsOf(view) && RowOf(view, row, iter))
        gtk_list_store_set(StoreOf(view), &iter, kListStoreText + column, DisplayText(text).c_str(),
                           -1);
}

void LListViewControls::LVGetColumnString(int id, int row, int column,
                                          char (&out)[kTextBufferSize]) const {
    CopyText(out, CellText(ListViewOf(id), row, column));
}

int LListViewControls::LVFindString(int id, const char* text) const {
    return LVFindColumnString(id, 0, text);
}

int LListViewControls::LVFindColumnString(int id, int column, const char* text) const {
    GtkTreeView* view = ListViewOf(id);
    const std::string wanted = DisplayText(text);
    const int count = column < ColumnsOf(view) ? LVGetCount(id) : 0;
    for (int row = 0; row < count; ++row) {
        if (CellText(view, row, column) == wanted)
            return row;
    }
    return -1;
}

void LListViewControls::LVDeleteItem(int id, int row) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (RowOf(view, row, iter))
        gtk_list_store_remove(StoreOf(view), &iter);
}

void LListViewControls::LVClear(int id) {
    if (GtkListStore* store = StoreOf(ListViewOf(id)))
        gtk_list_store_clear(store);
}

int LListViewControls::LVGetCount(int id) const {
    GtkListStore* store = StoreOf(ListViewOf(id));
    return store != nullptr ? gtk_tree_model_iter_n_children(GTK_TREE_MODEL(store), nullptr) : 0;
}

bool LListViewControls::LVGetSel(int id, int row) const {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    return RowOf(view, row, iter) &&
           gtk_tree_selection_iter_is_selected(gtk_tree_view_get_selection(view), &iter) != FALSE;
}

void LListViewControls::LVSetSel(int id, int row, bool selected) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (!RowOf(view, row, iter))
        return;
    if (selected)
        gtk_tree_selection_select_iter(gtk_tree_view_get_selection(view), &iter);
    else
        gtk_tree_selection_unselect_iter(gtk_tree_view_get_selection(view), &iter);
}

void LListViewControls::LVSetCurSel(int id, int row) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (!RowOf(view, row, iter))
        return;
    GtkTreePath* path = gtk_tree_path_new_from_indices(row, -1);
    gtk_tree_view_set_cursor(view, path, nullptr, FALSE);
    gtk_tree_path_free(path);
}

int LListViewControls::LVGetFirstSel(int id) const {
    const int count = LVGetCount(id);
    for (int row = 0; row < count; ++row) {
        if (LVGetSel(id, row))
            return row;
    }
    return -1;
}

int LListViewControls::LVGetSelCount(int id) const {
    GtkTreeView* view = ListViewOf(id);
    return StoreOf(view) != nullptr
               ? gtk_tree_selection_count_selected_rows(gtk_tree_view_get_selection(view))
               : 0;
}

void LListViewControls::LVEnsureVisible(int id, int row) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (!RowOf(view, row, iter))
        return;
    GtkTreePath* path = gtk_tree_path_new_from_indices(row, -1);
    gtk_tree_view_scroll_to_cell(view, path, nullptr, FALSE, 0, 0);
    gtk_tree_path_free(path);
}

int LListViewControls::LVGetItemData(int id, int row) const {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    gint data = 0;
    if (RowOf(view, row, iter))
        gtk_tree_model_get(GTK_TREE_MODEL(StoreOf(view)), &iter, kListStoreData, &data, -1);
    return data;
}

bool LListViewControls::LVGetCheck(int id, int row) const {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    gboolean checked = FALSE;
    if (RowOf(view, row, iter))
        gtk_tree_model_get(GTK_TREE_MODEL(StoreOf(view)), &iter, kListStoreCheck, &checked, -1);
    return checked != FALSE;
}

void LListViewControls::LVSetCheck(int id, int row, bool checked) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (RowOf(view, row, iter))
        gtk_list_store_set(StoreOf(view), &iter, kListStoreCheck, checked ? TRUE : FALSE, -1);
}

int LListViewControls::LVGetColumnWidth(int id, int column) const {
    GtkTreeViewColumn* found = ColumnOf(ListViewOf(id), column);
    return found != nullptr ? gtk_tree_view_column_get_width(found) : 0;
}

void LListViewControls::LVSetColumnWidth(int id, int column, int width) {
    if (GtkTreeViewColumn* found = ColumnOf(ListViewOf(id), column)) {
        gtk_tree_view_column_set_sizing(found, GTK_TREE_VIEW_COLUMN_FIXED);
        gtk_tree_view_column_set_fixed_width(found, std::max(1, width));
    }
}

void LListViewControls::LVSetColumnName(int id, int column, const char* name) {
    if (GtkTreeViewColumn* found = ColumnOf(ListViewOf(id), column))
        gtk_tree_view_column_set_title(found, DisplayText(name).c_str());
}

void LListViewControls::LVShowColumn(int id, int column, bool shown) {
    if (GtkTreeViewColumn* found = ColumnOf(ListViewOf(id), column))
        gtk_tree_view_column_set_visible(found, shown);
}

void LListViewControls::HandleLVSelChange(int id, int command) {
    if (GtkTreeView* list = ListViewOf(id)) {
        StoreCommand(list, "cursor-changed", command, id);
        Connect(list, "cursor-changed", G_CALLBACK(GCDialogListViewCurChanged));
    }
}

void LListViewControls::HandleLVDoubleClick(int id, int command) {
    if (GtkTreeView* list = ListViewOf(id)) {
        StoreCommand(list, "row-doubleclicked", command, id);
        Connect(list, "row-activated", G_CALLBACK(GCDialogListViewRowActivated));
    }
}
