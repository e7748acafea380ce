#include "gui/dialog.h"

#include "gui/dialog_gen_context.h"
#include "gui/display_text.h"
#include "gui/icons.h"

namespace {

constexpr int kTableRows = 100;
constexpr int kTableColumns = 2;

GtkWindow* OwnerOf(GtkWidget* parent) {
    return GTK_IS_WINDOW(parent) ? GTK_WINDOW(parent) : nullptr;
}

// Keeps the parent from being used while the dialog runs; it may be destroyed meanwhile.
class DisabledParent {
public:
    explicit DisabledParent(GtkWidget* parent) : parent_(GObjectRef<GtkWidget>::Share(parent)) {
        if (parent_)
            gtk_widget_set_sensitive(parent_.Get(), FALSE);
    }
    DisabledParent(const DisabledParent&) = delete;
    DisabledParent& operator=(const DisabledParent&) = delete;
    ~DisabledParent() {
        if (parent_)
            gtk_widget_set_sensitive(parent_.Get(), TRUE);
    }

private:
    GObjectRef<GtkWidget> parent_;
};

}  // namespace

struct LDialogCallbacks {
    static gboolean GCExitDlg(GtkWidget* widget, GdkEvent*, gpointer dialog) {
        if (auto* parent =
                static_cast<GtkWidget*>(g_object_steal_data(G_OBJECT(widget), "parent_grabbed"))) {
            gtk_grab_add(parent);
            g_object_unref(parent);
        }
        static_cast<LDialog*>(dialog)->CmClose();
        return TRUE;
    }
};

bool LDialog::Open(GtkWidget* parent, OpenGenData genData, bool modal) {
    if (IsOpen())
        return false;
    Build(parent, genData);
    InitDialog();
    if (modal)
        return RunModal(parent);
    RunModeless(parent);
    return true;
}

void LDialog::Build(GtkWidget* parent, const OpenGenData& genData) {
    const auto flags = GtkDialogFlags(GTK_DIALOG_DESTROY_WITH_PARENT |
                                      (genData.noSeparator ? GTK_DIALOG_NO_SEPARATOR : 0));
    GtkWidget* window = gtk_dialog_new_with_buttons(
        DisplayText(genData.title).c_str(), OwnerOf(parent), flags, GTK_STOCK_OK, GTK_RESPONSE_OK,
        GTK_STOCK_CANCEL, GTK_RESPONSE_CANCEL, GTK_STOCK_HELP, GTK_RESPONSE_HELP, nullptr);
    gtk_dialog_set_has_separator(GTK_DIALOG(window), !genData.noSeparator);
    gtk_dialog_set_default_response(GTK_DIALOG(window), GTK_RESPONSE_ACCEPT);
    gtk_window_set_resizable(GTK_WINDOW(window), FALSE);
    AttachWidget(window);
    SetAppIcon(kAppIconNumber);

    GtkWidget* table = gtk_table_new(kTableRows, kTableColumns, FALSE);
    LDialogGenContext context(*this, table);
    genData.generator(context);
    context.Finalize();
    CreateAccelerators();
    GtkWidget* content = gtk_dialog_get_content_area(GTK_DIALOG(window));
    gtk_box_pack_start(GTK_BOX(content), table, TRUE, TRUE, 0);
}

bool LDialog::RunModal(GtkWidget* parent) {
    gtk_window_set_modal(GTK_WINDOW(Widget()), TRUE);
    gtk_widget_show_all(Widget());
    const DisabledParent disabled(parent);
    for (;;) {
        if (!IsOpen())  // destroyed by a handler of ours
            return false;
        const int response = gtk_dialog_run(GTK_DIALOG(Widget()));
        if (response == GTK_RESPONSE_OK) {
            if (CmOk()) {
                Close(response);
                return true;
            }
        } else if (response == GTK_RESPONSE_HELP || response == kCommandHelp) {
            CmHelp();
        } else if (CmCancel()) {
            if (response == GTK_RESPONSE_NONE)  // destroyed under the loop
                return false;
            Close(response);
            return false;
        }
    }
}

void LDialog::RunModeless(GtkWidget* parent) {
    SetModeless(true);
    gtk_widget_show_all(Widget());
    if (parent != nullptr && gtk_grab_get_current() == parent) {
        g_object_set_data_full(G_OBJECT(Widget()), "parent_grabbed", g_object_ref(parent),
                               g_object_unref);
        gtk_grab_remove(parent);
    }
    g_signal_connect(Widget(), "delete_event", G_CALLBACK(LDialogCallbacks::GCExitDlg),
                     static_cast<LDialog*>(this));
}

void LDialog::DoOKButton() {
    if (GTK_IS_DIALOG(Widget()))
        gtk_dialog_response(GTK_DIALOG(Widget()), GTK_RESPONSE_OK);
}

void LDialog::DoCANCELButton() {
    if (GTK_IS_DIALOG(Widget()))
        gtk_dialog_response(GTK_DIALOG(Widget()), GTK_RESPONSE_CANCEL);
}
