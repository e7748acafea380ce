#include "desktop/dialogs/wizard.h"

#include "gui/accessible.h"
#include "gui/control_focus.h"
#include "gui/display_text.h"
#include "gui/minimum_size.h"
#include "gui/windows/dialog_frame.h"
#include "gui/windows/dialog_gen_context.h"

namespace {

constexpr int kWidth = 560;
constexpr int kHeight = 360;
constexpr int kTextWidth = 500;

}  // namespace

void LWizard::AddPage(LWizardPage& page, LDialog::OpenGenData genData) {
    pages_.push_back({&page, genData});
}

void LWizard::AddPageTable(const Page& page) {
    page.page->wizard_ = this;
    GtkWidget* headline = gtk_label_new(nullptr);
    char* markup = g_markup_printf_escaped("<span weight=\"bold\" size=\"large\">%s</span>",
                                           DisplayText(page.genData.title).c_str());
    gtk_label_set_markup(GTK_LABEL(headline), markup);
    g_free(markup);
    gtk_misc_set_alignment(GTK_MISC(headline), 0.0F, 0.5F);
    gtk_misc_set_padding(GTK_MISC(headline), 8, 8);
    GtkWidget* table = GenerateTable(*page.page, page.genData);
    page.page->AttachWidget(Window(), true);
    GtkWidget* box = gtk_vbox_new(FALSE, 0);
    SetPanelName(box, DisplayText(page.genData.title).c_str());
    gtk_box_pack_start(GTK_BOX(box), headline, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), table, FALSE, FALSE, 0);
    gtk_widget_show_all(box);
    gtk_notebook_append_page(GTK_NOTEBOOK(notebook_), box, nullptr);
}

void LWizard::AddButtons() {
    GtkDialog* dialog = GTK_DIALOG(Window());
    gtk_dialog_add_button(dialog, GTK_STOCK_CANCEL, GTK_RESPONSE_CANCEL);
    // No answer of the dialog, which would end its run.
    back_ = gtk_button_new_with_mnemonic("_Back");
    gtk_widget_set_can_default(back_, TRUE);
    g_signal_connect(back_, "clicked", G_CALLBACK(GCBack), this);
    gtk_box_pack_end(GTK_BOX(gtk_dialog_get_action_area(dialog)), back_, FALSE, TRUE, 0);
    forward_ = gtk_dialog_add_button(dialog, "_Next", GTK_RESPONSE_OK);
    gtk_dialog_set_default_response(dialog, GTK_RESPONSE_OK);
}

void LWizard::Build(GtkWidget* parent, const char* title) {
    window_ = GObjectRef<GtkWidget>::Share(NewDialogWindow(
        parent, title, GtkDialogFlags(GTK_DIALOG_MODAL | GTK_DIALOG_DESTROY_WITH_PARENT), {}));
    notebook_ = gtk_notebook_new();
    gtk_notebook_set_show_tabs(GTK_NOTEBOOK(notebook_), FALSE);
    gtk_notebook_set_show_border(GTK_NOTEBOOK(notebook_), FALSE);
    for (const Page& page : pages_)
        AddPageTable(page);
    gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(GTK_DIALOG(Window()))), notebook_, TRUE,
                       TRUE, 0);
    gtk_widget_show_all(notebook_);
    AddButtons();
    SetMinimumSize(Window(), kWidth, kHeight);
}

void LWizard::Show(std::size_t index) {
    shown_ = index;
    LWizardPage& page = *pages_[index].page;
    const bool isLast = index + 1 == pages_.size();
    const char* text = page.ForwardText();
    gtk_button_set_label(GTK_BUTTON(forward_), text ? text : isLast ? "_Finish" : "_Next");
    gtk_notebook_set_current_page(GTK_NOTEBOOK(notebook_), static_cast<gint>(index));
    EnableBack(index > 0);
    EnableCancel(true);
    EnableFinish(true);
    page.EnableControls();
    page.FocusControl(kPageText);
    page.EvPageShown();
}

bool LWizard::Leave() {
    if (!pages_[shown_].page->CmOk())
        return false;
    if (shown_ + 1 == pages_.size())
        return true;
    Show(shown_ + 1);
    return false;
}

void LWizard::GoForward() {
    if (window_ && shown_ + 1 < pages_.size())
        Show(shown_ + 1);
}

void LWizard::GCBack(GtkButton*, gpointer wizard) {
    auto* self = static_cast<LWizard*>(wizard);
    if (self->shown_ > 0)
        self->Show(self->shown_ - 1);
}

void LWizard::EnableFinish(bool enabled) {
    if (forward_ != nullptr)
        SetControlSensitive(forward_, enabled);
}

void LWizard::EnableBack(bool enabled) {
    if (back_ != nullptr)
        SetControlSensitive(back_, enabled);
}

void LWizard::EnableCancel(bool enabled) {
    if (window_)
        SetControlSensitive(
            gtk_dialog_get_widget_for_response(GTK_DIALOG(Window()), GTK_RESPONSE_CANCEL), enabled);
}

bool LWizard::Open(GtkWidget* parent, const char* title) {
    if (pages_.empty() || window_)
        return false;
    Build(parent, title);
    for (const Page& page : pages_)
        page.page->InitDialog();
    gtk_widget_show_all(Window());
    const LDisabledParent disabled(parent);
    Show(0);
    const LDialogEnd end = RunDialog(
        Window(), {[this] { return Leave(); }, [this] { return pages_[shown_].page->CmCancel(); },
                   [this] { pages_[shown_].page->CmHelp(); }});
    for (const Page& page : pages_)
        page.page->DestroyDialog();
    pages_.clear();
    if (end == LDialogEnd::kOk)
        gtk_widget_set_sensitive(Window(), FALSE);
    else
        Close();
    return end == LDialogEnd::kOk;
}

void LWizard::Close() {
    if (window_)
        gtk_widget_destroy(Window());
    window_.Reset();
    notebook_ = back_ = forward_ = nullptr;
}

void AddPageText(LDialogGenContext& context, int id, const char* text) {
    GtkWidget* label = gtk_label_new(DisplayText(text).c_str());
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_selectable(GTK_LABEL(label), TRUE);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0F, 0.0F);
    gtk_widget_set_size_request(label, kTextWidth, -1);
    // GTK selects the whole text of a label that takes the focus.
    g_signal_connect_after(label, "grab-focus", G_CALLBACK(+[](GtkLabel* self, gpointer) {
                               gtk_label_select_region(self, 0, 0);
                           }),
                           nullptr);
    context.AddSpanFull(label, id);
}
