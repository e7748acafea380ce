// Drop-down lists and combo boxes.
#pragma once

#include <string>

#include "foundation/files/text_buffer.h"
#include "gui/controls/control_host.h"

class LDropDownControls : public virtual LControlHost {
public:
    // Items count from 0. PDLSetText and PDLSetInt select the item that reads so, or none; a combo
    // box shows any text.
    void PDLInit(int id);  // an empty list, also for a combo box made elsewhere
    void PDLClear(int id);
    void PDLAddString(int id, const char* text);
    void PDLFill(int id, const char* const* texts);  // appends up to the null pointer
    int PDLGetCount(int id) const;
    int PDLGetCurSel(int id) const;  // -1 when none
    void PDLSetCurSel(int id, int item);
    void PDLGetText(int id, char (&out)[kTextBufferSize]) const;  // selected or typed text
    std::string PDLGetText(int id) const;
    std::string PDLGetItem(int id, int item) const;
    void PDLSetText(int id, const char* text);
    int PDLFindString(int id, const char* text) const;  // -1 when absent
    void PDLDeleteItem(int id, int item);
    int PDLGetInt(int id) const;
    void PDLSetInt(int id, int value);
    // From the per-user settings section and back into it: the first 1000 items, both ways.
    void PDLAutoFill(int id, const char* section);
    void PDLAutoGet(int id, const char* section) const;

    void HandlePDLSelChange(int id, int command = kUseControlId);

private:
    GtkListStore* ListOf(int id) const;
};
