// Tabs whose pages the window lays over the notebook itself.
#pragma once

#include <vector>

#include "foundation/files/text_buffer.h"
#include "gui/controls/control_host.h"

class LTabControls : public virtual LControlHost {
public:
    void TABInit(int id);
    void TABInsertTab(int id, int position, const char* text);
    void TABClear(int id);
    int TABGetCount(int id) const;
    int TABGetCurSel(int id) const;
    void TABSetCurSel(int id, int tab);
    void TABGetText(int id, int tab, char (&out)[kTextBufferSize]) const;
    int TABGetTabHeight(int id) const;  // pixels

    // Also once at the first layout of the window, which shows the selected tab's controls for the
    // first time.
    void HandleTABSelChange(int id, int command = kUseControlId);

private:
    static gboolean GCTABFirstLayout(GtkWidget* window, GdkEvent* event, gpointer host);
    std::vector<int> unlaid_;  // whose first layout is still to come
};
