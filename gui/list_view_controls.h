// List views: rows of texts, with images, check boxes and data of the caller's.
#pragma once

#include "foundation/text_buffer.h"
#include "gui/control_host.h"
#include "gui/list_view_columns.h"

class LListViewControls : public virtual LControlHost {
public:
    // Rows count from 0 as shown; columns count from 0, the check box not among them.
    void LVInit(int id, const LListColumns& columns);
    void LVDestroy(int id);        // stores the widths where they are to be kept
    void LVSetStyleCheck(int id);  // a check box before the first column; before LVInit
    bool LVIsStyleCheck(int id) const;
    int LVAddString(int id, const char* text, int data = 0);  // the new row, -1 for none
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
    bool LVGetCheck(int id, int row) const;
    void LVSetCheck(int id, int row, bool checked);
    int LVGetColumnWidth(int id, int column) const;  // pixels
    void LVSetColumnWidth(int id, int column, int width);
    void LVSetColumnName(int id, int column, const char* name);
    void LVShowColumn(int id, int column, bool shown);

    void HandleLVSelChange(int id, int command = kUseControlId);
    void HandleLVDoubleClick(int id, int command = kUseControlId);

private:
    GtkTreeView* ListViewOf(int id) const;
};
