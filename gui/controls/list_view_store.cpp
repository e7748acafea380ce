#include "gui/controls/list_view_store.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "foundation/owned_text.h"
#include "foundation/settings/settings.h"
#include "gui/controls/list_view_order.h"
#include "gui/display_text.h"
#include "gui/gobject_ref.h"

namespace {

constexpr const char* kSetUp = "colSet";
constexpr const char* kCheck = "iCheck";
constexpr const char* kTextColumn = "iText";  // of a view column: its number + 1

// What is left of the columns' description.
struct SetUp {
    LListColumns::Sizing sizing;
    std::string section;
    std::vector<LListSort> orders;
    std::vector<int> percent;
    int laidOutFor = 0;  // width of the view that the percentages were last taken of
};

SetUp* SetUpOf(GtkTreeView* view) {
    return static_cast<SetUp*>(g_object_get_data(G_OBJECT(view), kSetUp));
}

SetUp* NewSetUp(GtkTreeView* view, LListColumns::Sizing sizing) {
    auto setUp = std::make_unique<SetUp>();
    setUp->sizing = sizing;
    g_object_set_data_full(G_OBJECT(view), kSetUp, setUp.release(),
                           [](gpointer data) { delete static_cast<SetUp*>(data); });
    return SetUpOf(view);
}

std::string WidthKey(int column) {
    return "Col" + std::to_string(column + 1);
}

gint CompareRows(GtkTreeModel* model, GtkTreeIter* first, GtkTreeIter* second, gpointer data) {
    const int key = GPOINTER_TO_INT(data);
    char* a = nullptr;
    char* b = nullptr;
    gtk_tree_model_get(model, first, kListStoreText + key / 8, &a, -1);
    gtk_tree_model_get(model, second, kListStoreText + key / 8, &b, -1);
    const OwnedText firstText(a);
    const OwnedText secondText(b);
    return CompareListTexts(LListSort(key % 8), a != nullptr ? a : "", b != nullptr ? b : "");
}

// The store's own order goes with the store.
void ApplyOrders(GtkTreeView* view, const SetUp& setUp) {
    for (int column = 0; column < static_cast<int>(setUp.orders.size()); ++column) {
        const LListSort order = setUp.orders[static_cast<std::size_t>(column)];
        if (order == LListSort::kNone)
            continue;
        gtk_tree_sortable_set_sort_func(GTK_TREE_SORTABLE(ListStoreOf(view)), column, CompareRows,
                                        GINT_TO_POINTER(column * 8 + static_cast<int>(order)),
                                        nullptr);
        gtk_tree_view_column_set_sort_column_id(ListColumnOf(view, column), column);
    }
}

void SetWidth(GtkTreeViewColumn* column, int width) {
    gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_column_set_fixed_width(column, std::max(1, width));
}

int CheckWidth(GtkTreeView* view) {
    if (!ListHasChecks(view))
        return 0;
    return gtk_tree_view_column_get_width(gtk_tree_view_get_column(view, 0));
}

// A list has no width to take percentages of before it is laid out. Longer texts widen a column.
void GCListAllocated(GtkTreeView* view, GtkAllocation* place, gpointer) {
    SetUp* setUp = SetUpOf(view);
    const int width = place->width - CheckWidth(view);
    if (setUp == nullptr || setUp->sizing != LListColumns::kPercent || place->width <= 1 ||
        setUp->laidOutFor == width)
        return;
    setUp->laidOutFor = width;
    for (std::size_t i = 0; i < setUp->percent.size(); ++i)
        gtk_tree_view_column_set_min_width(ListColumnOf(view, static_cast<int>(i)),
                                           std::max(1, width * setUp->percent[i] / 100));
}

void GCCheckToggled(GtkCellRendererToggle*, gchar* path, gpointer view) {
    GtkListStore* store = ListStoreOf(GTK_TREE_VIEW(view));
    GtkTreeIter row;
    if (store == nullptr || !gtk_tree_model_get_iter_from_string(GTK_TREE_MODEL(store), &row, path))
        return;
    gboolean checked = FALSE;
    gtk_tree_model_get(GTK_TREE_MODEL(store), &row, kListStoreCheck, &checked, -1);
    gtk_list_store_set(store, &row, kListStoreCheck, !checked, -1);
}

void GCEdited(GtkCellRendererText* cell, gchar* path, gchar* text, gpointer view) {
    GtkListStore* store = ListStoreOf(GTK_TREE_VIEW(view));
    GtkTreeIter row;
    g_object_set(cell, "editable", FALSE, nullptr);
    if (store != nullptr && gtk_tree_model_get_iter_from_string(GTK_TREE_MODEL(store), &row, path))
        gtk_list_store_set(store, &row, kListStoreText, text, -1);
}

void GCEditingCanceled(GtkCellRenderer* cell, gpointer) {
    g_object_set(cell, "editable", FALSE, nullptr);
}

GtkTreeViewColumn* AppendTextColumn(GtkTreeView* view, int number, const char* name) {
    GtkTreeViewColumn* column = gtk_tree_view_column_new();
    gtk_tree_view_column_set_title(column, DisplayText(name).c_str());
    if (number == 0) {
        GtkCellRenderer* image = gtk_cell_renderer_pixbuf_new();
        gtk_tree_view_column_pack_start(column, image, FALSE);
        gtk_tree_view_column_set_attributes(column, image, "pixbuf", kListStoreImage, nullptr);
    }
    GtkCellRenderer* text = gtk_cell_renderer_text_new();
    g_signal_connect(text, "edited", G_CALLBACK(GCEdited), view);
    g_signal_connect(text, "editing-canceled", G_CALLBACK(GCEditingCanceled), nullptr);
    gtk_tree_view_column_pack_start(column, text, TRUE);
    gtk_tree_view_column_set_attributes(column, text, "text", kListStoreText + number,
                                        "foreground-gdk", kListStoreColor, "foreground-set",
                                        kListStoreColored, nullptr);
    gtk_tree_view_column_set_resizable(column, TRUE);
    g_object_set_data(G_OBJECT(column), kTextColumn, GINT_TO_POINTER(number + 1));
    gtk_tree_view_append_column(view, column);
    return column;
}

GObjectRef<GtkListStore> NewStore(std::size_t textColumns) {
    std::vector<GType> types(kListStoreText + textColumns, G_TYPE_STRING);
    types[kListStoreCheck] = G_TYPE_BOOLEAN;
    types[kListStoreData] = G_TYPE_INT;
    types[kListStoreUid] = G_TYPE_INT;
    types[kListStoreImage] = GDK_TYPE_PIXBUF;
    types[kListStoreColor] = GDK_TYPE_COLOR;
    types[kListStoreColored] = G_TYPE_BOOLEAN;
    return GObjectRef<GtkListStore>::Adopt(
        gtk_list_store_newv(static_cast<gint>(types.size()), types.data()));
}

void CopyRows(GtkTreeModel* from, GtkListStore* to) {
    GtkTreeIter row;
    const int columns = gtk_tree_model_get_n_columns(from);
    for (gboolean more = gtk_tree_model_get_iter_first(from, &row); more;
         more = gtk_tree_model_iter_next(from, &row)) {
        GtkTreeIter copy;
        gtk_list_store_append(to, &copy);
        for (int column = 0; column < columns; ++column) {
            GValue value = G_VALUE_INIT;
            gtk_tree_model_get_value(from, &row, column, &value);
            gtk_list_store_set_value(to, &copy, column, &value);
            g_value_unset(&value);
        }
    }
}

int FirstWidth(const LListColumns& columns, int column) {
    const int given = columns.columns[static_cast<std::size_t>(column)].width;
    if (columns.sizing != LListColumns::kStoredPixels)
        return given;
    return LUserSettingGetInt(columns.section, WidthKey(column).c_str(), given);
}

}  // namespace

GtkListStore* ListStoreOf(GtkTreeView* view) {
    GtkTreeModel* model = view != nullptr ? gtk_tree_view_get_model(view) : nullptr;
    return GTK_IS_LIST_STORE(model) ? GTK_LIST_STORE(model) : nullptr;
}

bool ListRowOf(GtkTreeView* view, int row, GtkTreeIter& out) {
    GtkListStore* store = ListStoreOf(view);
    return store != nullptr && row >= 0 &&
           gtk_tree_model_iter_nth_child(GTK_TREE_MODEL(store), &out, nullptr, row);
}

int ListColumnCount(GtkTreeView* view) {
    GtkListStore* store = ListStoreOf(view);
    return store != nullptr ? gtk_tree_model_get_n_columns(GTK_TREE_MODEL(store)) - kListStoreText
                            : 0;
}

GtkTreeViewColumn* ListColumnOf(GtkTreeView* view, int column) {
    if (column < 0 || column >= ListColumnCount(view))
        return nullptr;
    for (int i = 0; GtkTreeViewColumn* found = gtk_tree_view_get_column(view, i); ++i) {
        if (GPOINTER_TO_INT(g_object_get_data(G_OBJECT(found), kTextColumn)) == column + 1)
            return found;
    }
    return nullptr;
}

GtkCellRenderer* ListTextCellOf(GtkTreeView* view, int column) {
    GtkTreeViewColumn* found = ListColumnOf(view, column);
    if (found == nullptr)
        return nullptr;
    GList* cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(found));
    auto* text = static_cast<GtkCellRenderer*>(g_list_last(cells)->data);
    g_list_free(cells);
    return text;
}

std::string ListCellText(GtkTreeView* view, int row, int column) {
    GtkTreeIter iter;
    if (column < 0 || column >= ListColumnCount(view) || !ListRowOf(view, row, iter))
        return "";
    char* text = nullptr;
    gtk_tree_model_get(GTK_TREE_MODEL(ListStoreOf(view)), &iter, kListStoreText + column, &text,
                       -1);
    const OwnedText owned(text);
    return text != nullptr ? text : "";
}

void SetListColumns(GtkTreeView* view, const LListColumns& columns) {
    while (GtkTreeViewColumn* old = gtk_tree_view_get_column(view, 0))
        gtk_tree_view_remove_column(view, old);
    const auto store = NewStore(columns.columns.size());
    gtk_tree_view_set_model(view, GTK_TREE_MODEL(store.Get()));
    SetUp* setUp = NewSetUp(view, columns.sizing);
    if (columns.sizing == LListColumns::kStoredPixels)
        setUp->section = columns.section;
    if (ListHasChecks(view))
        AppendListCheckColumn(view, "");
    for (int i = 0; i < static_cast<int>(columns.columns.size()); ++i) {
        const LListColumn& column = columns.columns[static_cast<std::size_t>(i)];
        GtkTreeViewColumn* shown = AppendTextColumn(view, i, column.name);
        setUp->percent.push_back(column.width);
        if (columns.sizing == LListColumns::kPixels ||
            columns.sizing == LListColumns::kStoredPixels)
            SetWidth(shown, FirstWidth(columns, i));
        setUp->orders.push_back(column.sort);
    }
    ApplyOrders(view, *setUp);
    g_signal_handlers_disconnect_by_func(view, reinterpret_cast<gpointer>(GCListAllocated),
                                         nullptr);
    g_signal_connect(view, "size-allocate", G_CALLBACK(GCListAllocated), nullptr);
}

void AppendListTextColumn(GtkTreeView* view, const LListColumn& column) {
    const int number = ListColumnCount(view);
    const auto store = NewStore(static_cast<std::size_t>(number) + 1);
    if (GtkTreeModel* old = gtk_tree_view_get_model(view))
        CopyRows(old, store.Get());
    gtk_tree_view_set_model(view, GTK_TREE_MODEL(store.Get()));
    GtkTreeViewColumn* shown = AppendTextColumn(view, number, column.name);
    if (column.width > 0)
        SetWidth(shown, column.width);
    SetUp* setUp = SetUpOf(view);
    if (setUp == nullptr)
        setUp = NewSetUp(view, LListColumns::kDynamic);
    setUp->orders.push_back(column.sort);
    ApplyOrders(view, *setUp);
}

void AppendListCheckColumn(GtkTreeView* view, const char* name) {
    GtkCellRenderer* cell = gtk_cell_renderer_toggle_new();
    g_signal_connect(cell, "toggled", G_CALLBACK(GCCheckToggled), view);
    gtk_tree_view_append_column(
        view, gtk_tree_view_column_new_with_attributes(DisplayText(name).c_str(), cell, "active",
                                                       kListStoreCheck, nullptr));
}

void AppendListImageColumn(GtkTreeView* view, const char* name) {
    gtk_tree_view_append_column(view, gtk_tree_view_column_new_with_attributes(
                                          DisplayText(name).c_str(), gtk_cell_renderer_pixbuf_new(),
                                          "pixbuf", kListStoreImage, nullptr));
}

void StoreListWidths(GtkTreeView* view) {
    const SetUp* setUp = SetUpOf(view);
    if (setUp == nullptr || setUp->section.empty())
        return;
    for (int column = 0; column < ListColumnCount(view); ++column) {
        // A list that was never shown has no widths of its own.
        if (const int width = gtk_tree_view_column_get_width(ListColumnOf(view, column)); width > 0)
            LUserSettingSetInt(setUp->section.c_str(), WidthKey(column).c_str(), width);
    }
}

bool ListHasChecks(GtkTreeView* view) {
    return view != nullptr && g_object_get_data(G_OBJECT(view), kCheck) != nullptr;
}

void SetListHasChecks(GtkTreeView* view) {
    g_object_set_data(G_OBJECT(view), kCheck, GINT_TO_POINTER(1));
}
