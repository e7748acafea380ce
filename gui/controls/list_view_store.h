// What stands behind a list view: its store and its columns.
#pragma once

#include <gtk/gtk.h>

#include <string>

#include "gui/controls/list_view_columns.h"

// Columns of the GtkListStore.
enum LListStoreColumn {
    kListStoreCheck = 0,    // gboolean
    kListStoreData = 1,     // gint
    kListStoreUid = 2,      // gint
    kListStoreImage = 3,    // GdkPixbuf
    kListStoreColor = 4,    // GdkColor of the texts
    kListStoreColored = 5,  // gboolean
    kListStoreText = 6,     // gchararray, one for each text column from here on
};

// All take null for a control that is no list view, and then answer null, false, 0 or nothing.
GtkListStore* ListStoreOf(GtkTreeView* view);
bool ListRowOf(GtkTreeView* view, int row, GtkTreeIter& out);
int ListColumnCount(GtkTreeView* view);                          // text columns
GtkTreeViewColumn* ListColumnOf(GtkTreeView* view, int column);  // a text column by its number
GtkCellRenderer* ListTextCellOf(GtkTreeView* view, int column);
std::string ListCellText(GtkTreeView* view, int row, int column);

// Empties the view and gives it the columns.
void SetListColumns(GtkTreeView* view, const LListColumns& columns);
// One more text column, empty in the rows that are there.
void AppendListTextColumn(GtkTreeView* view, const LListColumn& column);
void AppendListCheckColumn(GtkTreeView* view, const char* name);
void AppendListImageColumn(GtkTreeView* view, const char* name);
void StoreListWidths(GtkTreeView* view);  // where the columns' description has them kept

bool ListHasChecks(GtkTreeView* view);
void SetListHasChecks(GtkTreeView* view);
