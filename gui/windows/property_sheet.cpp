#include "gui/windows/property_sheet.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>

#include "gui/display_text.h"
#include "gui/menus/key_map.h"
#include "gui/minimum_size.h"
#include "gui/windows/dialog_frame.h"

namespace {

constexpr int kSheetWidth = 550;

// Ctrl+Page Down and Ctrl+Page Up turn the pages from the buttons too, where the notebook does not
// hear them: who cannot see where the focus is need not look for it first. F1 asks for Help.
gboolean GCPageKey(GtkWidget* window, GdkEventKey* event, gpointer notebook) {
    const LKeyCode key = KeyCodeOfEvent(*event);
    if (key == GDK_KEY_F1) {
        gtk_dialog_response(GTK_DIALOG(window), GTK_RESPONSE_HELP);
        return TRUE;
    }
    const bool forward = key == (kKeyControl | GDK_KEY_Page_Down);
    if (!forward && key != (kKeyControl | GDK_KEY_Page_Up))
        return FALSE;
    gboolean turned = FALSE;
    gtk_widget_grab_focus(GTK_WIDGET(notebook));
    g_signal_emit_by_name(notebook, "change-current-page", forward ? 1 : -1, &turned);
    return turned;
}

}  // namespace

void LPropertySheet::AddPage(LPropertyPage& page, LDialog::OpenGenData genData) {
    if (pages_.size() < kMaxPages)
        pages_.push_back({&page, genData});
}

GtkWidget* LPropertySheet::Build(GtkWidget* parent, const char* title) {
    const auto flags = GtkDialogFlags(GTK_DIALOG_MODAL | GTK_DIALOG_DESTROY_WITH_PARENT);
    GtkWidget* window = NewDialogWindow(parent, title, flags,
                                        {{GTK_STOCK_OK, GTK_RESPONSE_OK},
                                         {GTK_STOCK_CANCEL, GTK_RESPONSE_CANCEL},
                                         {GTK_STOCK_HELP, GTK_RESPONSE_HELP}});
    gtk_dialog_set_default_response(GTK_DIALOG(window), GTK_RESPONSE_OK);
    gtk_window_set_default_size(GTK_WINDOW(window), 500, -1);
    gtk_window_set_resizable(GTK_WINDOW(window), FALSE);

    notebook_ = gtk_notebook_new();
    for (const Page& page : pages_) {
        GtkWidget* table = GenerateTable(*page.page, page.genData);
        page.page->AttachWidget(window, true);
        gtk_notebook_append_page(GTK_NOTEBOOK(notebook_), table,
                                 gtk_label_new(DisplayText(page.genData.title).c_str()));
    }
    gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(GTK_DIALOG(window))), notebook_, TRUE,
                       TRUE, 0);
    gtk_widget_show_all(notebook_);
    g_signal_connect_after(window, "key-press-event", G_CALLBACK(GCPageKey), notebook_);
    SetMinimumSize(window, kSheetWidth, -1);
    return window;
}

bool LPropertySheet::AllPages(bool (LWindow::*answer)()) const {
    return std::ranges::all_of(pages_, [&](const Page& page) { return (page.page->*answer)(); });
}

void LPropertySheet::Help() const {
    const int shown = gtk_notebook_get_current_page(GTK_NOTEBOOK(notebook_));
    if (shown >= 0 && static_cast<std::size_t>(shown) < pages_.size())
        pages_[static_cast<std::size_t>(shown)].page->CmHelp();
}

bool LPropertySheet::Open(GtkWidget* parent, const char* title, int startPage) {
    // A reference of our own: the sheet may be destroyed with its parent while it runs.
    const auto window = GObjectRef<GtkWidget>::Share(Build(parent, title));
    for (const Page& page : pages_)
        page.page->InitDialog();
    for (const Page& page : pages_)
        page.page->EnableControls();
    FitToScreen(window.Get(), notebook_);
    gtk_widget_show_all(window.Get());
    if (startPage != 0)
        gtk_notebook_set_current_page(GTK_NOTEBOOK(notebook_), startPage);
    const LDialogEnd end = RunDialog(
        window.Get(), {[this] { return AllPages(&LWindow::CmOk); },
                       [this] { return AllPages(&LWindow::CmCancel); }, [this] { Help(); }});
    for (const Page& page : pages_)
        page.page->DestroyDialog();
    gtk_widget_destroy(window.Get());
    notebook_ = nullptr;
    return end == LDialogEnd::kOk && !pages_.empty();
}
