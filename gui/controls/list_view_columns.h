// How the columns of a list view are described.
#pragma once

#include <span>

// How a click on a column's heading orders the rows; a second click reverses.
enum class LListSort {
    kNone,    // the heading does nothing
    kText,    // as the user's language has it, capitals and small letters alike
    kNumber,  // by the number that the text begins with
    kDate,    // day/month/year or year-month-day, then the time of day
};

struct LListColumn {
    const char* name;  // its heading; borrowed during LVInit only
    int width;         // in the unit that LListColumns says; unused for kDynamic
    LListSort sort = LListSort::kNone;
};

struct LListColumns {
    enum Sizing {
        kPercent,       // of the list's width, whatever that is when it is shown
        kPixels,        // as given
        kStoredPixels,  // as LVDestroy last stored them in the user settings, else as given
        kDynamic,       // as wide as the content
    };
    Sizing sizing;
    std::span<const LListColumn> columns;
    const char* section = nullptr;  // of the stored widths; borrowed during LVInit only
};
