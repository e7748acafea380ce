#include "gui/controls/list_view_controls.h"

#include <algorithm>
#include <string>
#include <vector>

#include "gui/controls/list_view_store.h"
#include "gui/display_text.h"
#include "gui/icons.h"

namespace {

constexpr int kRowImageSize = 16;          // pixels
constexpr const char* kImages = "images";  // std::vector<int> of icon numbers

void GCDialogListViewCurChanged(GtkWidget* list, gpointer host) {
    DeliverStored(host, list, "cursor-changed");
}

void GCDialogListViewRowActivated(GtkWidget* list, GtkTreePath*, GtkTreeViewColumn*,
                                  gpointer host) {
    DeliverStored(host, list, "row-doubleclicked");
}

std::vector<int>* ImagesOf(GtkTreeView* view) {
    return view != nullptr
               ? static_cast<std::vector<int>*>(g_object_get_data(G_OBJECT(view), kImages))
               : nullptr;
}

int NextUid() {
    static int uid = 0;
    return ++uid;
}

template <typename T>
T RowValue(GtkTreeView* view, int row, LListStoreColumn column) {
    GtkTreeIter iter;
    T value{};
    if (ListRowOf(view, row, iter))
        gtk_tree_model_get(GTK_TREE_MODEL(ListStoreOf(view)), &iter, column, &value, -1);
    return value;
}

int RowOfIter(GtkListStore* store, GtkTreeIter* iter) {
    GtkTreePath* path = gtk_tree_model_get_path(GTK_TREE_MODEL(store), iter);
    const int row = gtk_tree_path_get_indices(path)[0];
    gtk_tree_path_free(path);
    return row;
}

}  // namespace

GtkTreeView* LListViewControls::ListViewOf(int id) const {
    return ControlAs<GtkTreeView>(id, GTK_TYPE_TREE_VIEW);
}

void LListViewControls::LVInit(int id, const LListColumns& columns) {
    if (GtkTreeView* view = ListViewOf(id))
        SetListColumns(view, columns);
}

void LListViewControls::LVDestroy(int id) {
    if (GtkTreeView* view = ListViewOf(id))
        StoreListWidths(view);
}

void LListViewControls::LVSetStyleCheck(int id) {
    if (GtkTreeView* view = ListViewOf(id))
        SetListHasChecks(view);
}

bool LListViewControls::LVIsStyleCheck(int id) const {
    return ListHasChecks(ListViewOf(id));
}

void LListViewControls::LVAddTextColumn(int id, const LListColumn& column) {
    if (GtkTreeView* view = ListViewOf(id))
        AppendListTextColumn(view, column);
}

void LListViewControls::LVAddCheckColumn(int id, const char* name) {
    if (GtkTreeView* view = ListViewOf(id))
        AppendListCheckColumn(view, name);
}

void LListViewControls::LVAddImageColumn(int id, const char* name) {
    if (GtkTreeView* view = ListViewOf(id))
        AppendListImageColumn(view, name);
}

int LListViewControls::LVAddString(int id, const char* text, int data) {
    return InsertRow(id, LVGetCount(id), {text}, data);
}

int LListViewControls::LVAddRow(int id, std::initializer_list<const char*> texts, int data) {
    return InsertRow(id, LVGetCount(id), texts, data);
}

int LListViewControls::LVInsertString(int id, int row, const char* text, int data) {
    return InsertRow(id, row, {text}, data);
}

int LListViewControls::InsertRow(int id, int row, std::initializer_list<const char*> texts,
                                 int data) {
    GtkTreeView* const view = ListViewOf(id);
    GtkListStore* const store = ListStoreOf(view);
    if (store == nullptr || row < 0)
        return -1;
    std::vector<gint> columns{kListStoreData, kListStoreUid};
    std::vector<GValue> values(columns.size() + texts.size(), GValue G_VALUE_INIT);
    g_value_set_int(g_value_init(&values[0], G_TYPE_INT), data);
    g_value_set_int(g_value_init(&values[1], G_TYPE_INT), NextUid());
    const int columnCount = ListColumnCount(view);
    int column = 0;
    for (const char* const text : texts) {
        if (column == columnCount)
            break;
        GValue& value = values[columns.size()];
        columns.push_back(kListStoreText + column++);
        g_value_set_string(g_value_init(&value, G_TYPE_STRING), DisplayText(text).c_str());
    }
    GtkTreeIter iter;
    gtk_list_store_insert_with_valuesv(store, &iter, std::min(row, LVGetCount(id)), columns.data(),
                                       values.data(), static_cast<gint>(columns.size()));
    for (std::size_t i = 0; i < columns.size(); ++i)
        g_value_unset(&values[i]);
    return RowOfIter(store, &iter);
}

void LListViewControls::LVSetString(int id, int row, const char* text) {
    LVSetColumnString(id, row, 0, text);
}

void LListViewControls::LVSetColumnString(int id, int row, int column, const char* text) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (column >= 0 && column < ListColumnCount(view) && ListRowOf(view, row, iter))
        gtk_list_store_set(ListStoreOf(view), &iter, kListStoreText + column,
                           DisplayText(text).c_str(), -1);
}

void LListViewControls::LVGetColumnString(int id, int row, int column,
                                          char (&out)[kTextBufferSize]) const {
    CopyShownText(out, ListCellText(ListViewOf(id), row, column));
}

int LListViewControls::LVFindString(int id, const char* text) const {
    return LVFindColumnString(id, 0, text);
}

int LListViewControls::LVFindColumnString(int id, int column, const char* text) const {
    GtkTreeView* view = ListViewOf(id);
    const std::string wanted = DisplayText(text);
    const int count = column < ListColumnCount(view) ? LVGetCount(id) : 0;
    for (int row = 0; row < count; ++row) {
        if (ListCellText(view, row, column) == wanted)
            return row;
    }
    return -1;
}

void LListViewControls::LVDeleteItem(int id, int row) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (ListRowOf(view, row, iter))
        gtk_list_store_remove(ListStoreOf(view), &iter);
}

void LListViewControls::LVClear(int id) {
    if (GtkListStore* store = ListStoreOf(ListViewOf(id)))
        gtk_list_store_clear(store);
}

int LListViewControls::LVGetCount(int id) const {
    GtkListStore* store = ListStoreOf(ListViewOf(id));
    return store != nullptr ? gtk_tree_model_iter_n_children(GTK_TREE_MODEL(store), nullptr) : 0;
}

bool LListViewControls::LVGetSel(int id, int row) const {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    return ListRowOf(view, row, iter) &&
           gtk_tree_selection_iter_is_selected(gtk_tree_view_get_selection(view), &iter) != FALSE;
}

void LListViewControls::LVSetSel(int id, int row, bool selected) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (!ListRowOf(view, row, iter))
        return;
    if (selected)
        gtk_tree_selection_select_iter(gtk_tree_view_get_selection(view), &iter);
    else
        gtk_tree_selection_unselect_iter(gtk_tree_view_get_selection(view), &iter);
}

void LListViewControls::LVSetCurSel(int id, int row) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (!ListRowOf(view, row, iter))
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
    return ListStoreOf(view) != nullptr
               ? gtk_tree_selection_count_selected_rows(gtk_tree_view_get_selection(view))
               : 0;
}

void LListViewControls::LVEnsureVisible(int id, int row) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (!ListRowOf(view, row, iter))
        return;
    GtkTreePath* path = gtk_tree_path_new_from_indices(row, -1);
    gtk_tree_view_scroll_to_cell(view, path, nullptr, FALSE, 0, 0);
    gtk_tree_path_free(path);
}

int LListViewControls::LVGetItemData(int id, int row) const {
    return RowValue<gint>(ListViewOf(id), row, kListStoreData);
}

int LListViewControls::LVGetUID(int id, int row) const {
    return RowValue<gint>(ListViewOf(id), row, kListStoreUid);
}

void LListViewControls::LVEditCurLabel(int id) {
    GtkTreeView* view = ListViewOf(id);
    GtkCellRenderer* cell = ListTextCellOf(view, 0);
    GtkTreePath* path = nullptr;
    if (cell != nullptr)
        gtk_tree_view_get_cursor(view, &path, nullptr);
    if (path == nullptr)
        return;
    g_object_set(cell, "editable", TRUE, nullptr);
    gtk_tree_view_set_cursor_on_cell(view, path, ListColumnOf(view, 0), cell, TRUE);
    gtk_tree_path_free(path);
}

void LListViewControls::LVSetImages(int id, std::span<const int> iconNumbers) {
    if (GtkTreeView* view = ListViewOf(id))
        g_object_set_data_full(
            G_OBJECT(view), kImages, new std::vector<int>(iconNumbers.begin(), iconNumbers.end()),
            [](gpointer images) { delete static_cast<std::vector<int>*>(images); });
}

bool LListViewControls::LVIsStyleImages(int id) const {
    return ImagesOf(ListViewOf(id)) != nullptr;
}

int LListViewControls::LVImageAddString(int id, int image, const char* text, int data) {
    const int row = LVAddString(id, text, data);
    LVSetImage(id, row, image);
    return row;
}

void LListViewControls::LVSetImage(int id, int row, int image) {
    GtkTreeView* view = ListViewOf(id);
    const std::vector<int>* images = ImagesOf(view);
    GtkTreeIter iter;
    if (images == nullptr || !ListRowOf(view, row, iter))
        return;
    const bool known = image >= 0 && static_cast<std::size_t>(image) < images->size();
    const auto icon = known ? LoadIconAt((*images)[static_cast<std::size_t>(image)], kRowImageSize)
                            : GObjectRef<GdkPixbuf>();
    gtk_list_store_set(ListStoreOf(view), &iter, kListStoreImage, icon.Get(), -1);
}

void LListViewControls::LVSetRowColor(int id, int row, const GdkColor& color) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (ListRowOf(view, row, iter))
        gtk_list_store_set(ListStoreOf(view), &iter, kListStoreColor, &color, kListStoreColored,
                           TRUE, -1);
}

void LListViewControls::LVUnSetRowColor(int id, int row) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (ListRowOf(view, row, iter))
        // A colour that is there is drawn, whatever is said of it.
        gtk_list_store_set(ListStoreOf(view), &iter, kListStoreColor, nullptr, kListStoreColored,
                           FALSE, -1);
}

bool LListViewControls::LVIsRowColorSet(int id, int row) const {
    return RowValue<gboolean>(ListViewOf(id), row, kListStoreColored) != FALSE;
}

bool LListViewControls::LVGetCheck(int id, int row) const {
    return RowValue<gboolean>(ListViewOf(id), row, kListStoreCheck) != FALSE;
}

void LListViewControls::LVSetCheck(int id, int row, bool checked) {
    GtkTreeView* view = ListViewOf(id);
    GtkTreeIter iter;
    if (ListRowOf(view, row, iter))
        gtk_list_store_set(ListStoreOf(view), &iter, kListStoreCheck, checked ? TRUE : FALSE, -1);
}

int LListViewControls::LVGetColumnWidth(int id, int column) const {
    GtkTreeViewColumn* found = ListColumnOf(ListViewOf(id), column);
    return found != nullptr ? gtk_tree_view_column_get_width(found) : 0;
}

void LListViewControls::LVSetColumnWidth(int id, int column, int width) {
    if (GtkTreeViewColumn* found = ListColumnOf(ListViewOf(id), column)) {
        gtk_tree_view_column_set_sizing(found, GTK_TREE_VIEW_COLUMN_FIXED);
        gtk_tree_view_column_set_fixed_width(found, std::max(1, width));
    }
}

void LListViewControls::LVSetColumnName(int id, int column, const char* name) {
    if (GtkTreeViewColumn* found = ListColumnOf(ListViewOf(id), column))
        gtk_tree_view_column_set_title(found, DisplayText(name).c_str());
}

void LListViewControls::LVShowColumn(int id, int column, bool shown) {
    if (GtkTreeViewColumn* found = ListColumnOf(ListViewOf(id), column))
        gtk_tree_view_column_set_visible(found, shown);
}

void LListViewControls::LVSetColumnsPixels(int id, std::span<const int> widths) {
    for (std::size_t column = 0; column < widths.size(); ++column)
        LVSetColumnWidth(id, static_cast<int>(column), widths[column]);
}

std::uint32_t LListViewControls::LVGetShowColumnState(int id) const {
    GtkTreeView* view = ListViewOf(id);
    std::uint32_t shown = 0;
    for (int column = 0; column < std::min(ListColumnCount(view), 32); ++column) {
        if (gtk_tree_view_column_get_visible(ListColumnOf(view, column)))
            shown |= std::uint32_t{1} << column;
    }
    return shown;
}

void LListViewControls::LVSetShowColumnState(int id, std::uint32_t shown) {
    for (int column = 0; column < 32; ++column)
        LVShowColumn(id, column, (shown >> column & 1) != 0);
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
