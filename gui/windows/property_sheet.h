// Several dialogs as the pages of one tabbed dialog.
#pragma once

#include <vector>

#include "gui/windows/dialog.h"

// A page's Widget() is the sheet's window while the sheet is open.
class LPropertyPage : public LDialog {
    friend class LPropertySheet;
};

class LPropertySheet {
public:
    static constexpr int kMaxPages = 16;

    // Pages are borrowed and must outlive Open; further pages than kMaxPages are ignored.
    void AddPage(LPropertyPage& page, LDialog::OpenGenData genData);

    // Runs the sheet modally; true when every page accepted OK. GUI thread, GDK lock held.
    bool Open(GtkWidget* parent, const char* title, int startPage);

private:
    struct Page {
        LPropertyPage* page;
        LDialog::OpenGenData genData;
    };
    GtkWidget* Build(GtkWidget* parent, const char* title);
    bool AllPages(bool (LWindow::*answer)()) const;  // in order, up to the first that says no
    void Help() const;                               // of the page shown

    std::vector<Page> pages_;
    GtkWidget* notebook_ = nullptr;  // owned by the sheet's window
};
