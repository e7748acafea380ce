// How the columns of a list view are described, and what its store holds.
#pragma once

#include <gtk/gtk.h>

#include <span>

struct LListColumn {
    const char* name;  // its heading; borrowed during LVInit only
    int width;         // in the unit that LListColumns says; unused for kDynamic
};

struct LListColumns {
    enum Sizing {
        kPercent,       // of the list's width when it is set up
        kPixels,        // as given
        kStoredPixels,  // as LVDestroy last stored them in the user settings, else as given
        kDynamic,       // as wide as the content
    };
    Sizing sizing;
    std::span<const LListColumn> columns;
    const char* section = nullptr;  // of the stored widths; must outlive the list
};

// Columns of the GtkListStore behind a list view.
enum LListStoreColumn {
    kListStoreCheck = 0,  // gboolean
    kListStoreData = 1,   // gint
    kListStoreText = 2,   // gchararray, one for each column from here on
};
