// List views: rows of texts, with images, check boxes and data of the caller's.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>

#include "foundation/files/text_buffer.h"
#include "gui/controls/control_host.h"
#include "gui/controls/list_view_columns.h"

class LListViewControls : public virtual LControlHost {
public:
    // Rows count from 0 as shown; text columns count from 0, check boxes and images not among them.
    void LVInit(int id, const LListColumns& columns);
    void LVDestroy(int id);        // stores the widths where they are to be kept
    void LVSetStyleCheck(int id);  // a check box before the first column; before LVInit
    bool LVIsStyleCheck(int id) const;
    // Further columns at the right end; rows that are there stay.
    void LVAddTextColumn(int id, const LListColumn& column);  // as wide as the content at width 0
    void LVAddCheckColumn(int id, const char* name);          // the check of the row
    void LVAddImageColumn(int id, const char* name);          // the image of the row

    // The new row, -1 for none; a list that is sorted puts it where it belongs.
    int LVAddString(int id, const char* text, int data = 0);
    // With a text for each column from the first on. Screen readers hear of a row once, so that a
    // long list is up at once.
    int LVAddRow(int id, std::initializer_list<const char*> texts, int data = 0);
    int LVInsertString(int id, int row, const char* text, int data = 0);
    void LVSetString(int id, int row, const char* text);
    void LVSetColumnString(int id, int row, int column, const char* text);
    void LVGetColumnString(int id, int row, int column, char (&out)[kTextBufferSize]) const;
    int LVFindString(int id, const char* text) const;  // -1 when absent
    int LVFindColumnString(int id, int column, const char* text) const;
    void LVDeleteItem(int id, int row);
    void LVClear(int id);
    int LVGetCount(int id) const;
    bool LVGetSel(int id, int row) const;
    void LVSetSel(int id, int row, bool selected);
    void LVSetCurSel(int id, int row);  // the only selected row, with the cursor
    int LVGetFirstSel(int id) const;    // -1 when none
    int LVGetSelCount(int id) const;
    void LVEnsureVisible(int id, int row);
    int LVGetItemData(int id, int row) const;  // as added; 0 for an unknown row
    int LVGetUID(int id, int row) const;       // never given twice in a program run; 0 for none
    void LVEditCurLabel(int id);               // lets the user edit the current row's first text
    bool LVGetCheck(int id, int row) const;
    void LVSetCheck(int id, int row, bool checked);

    // The images that rows may have before their first text, by icon number; rows name them by
    // their place in this list, -1 for none.
    void LVSetImages(int id, std::span<const int> iconNumbers);
    bool LVIsStyleImages(int id) const;
    int LVImageAddString(int id, int image, const char* text, int data = 0);
    void LVSetImage(int id, int row, int image);
    void LVSetRowColor(int id, int row, const GdkColor& color);  // of its texts
    void LVUnSetRowColor(int id, int row);
    bool LVIsRowColorSet(int id, int row) const;

    int LVGetColumnWidth(int id, int column) const;  // pixels
    void LVSetColumnWidth(int id, int column, int width);
    void LVSetColumnName(int id, int column, const char* name);
    void LVSetColumnsPixels(int id, std::span<const int> widths);
    void LVShowColumn(int id, int column, bool shown);
    // Bit n is set when text column n is shown.
    std::uint32_t LVGetShowColumnState(int id) const;
    void LVSetShowColumnState(int id, std::uint32_t shown);

    void HandleLVSelChange(int id, int command = kUseControlId);
    void HandleLVDoubleClick(int id, int command = kUseControlId);

private:
    GtkTreeView* ListViewOf(int id) const;
    int InsertRow(int id, int row, std::initializer_list<const char*> texts, int data);
};
