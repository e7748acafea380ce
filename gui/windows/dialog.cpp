#include "gui/windows/dialog.h"

#include <gdk/gdkkeysyms.h>

#include "gui/menus/key_map.h"
#include "gui/windows/dialog_frame.h"
#include "gui/windows/dialog_gen_context.h"

namespace {

constexpr int kTableRows = 100;
constexpr int kTableColumns = 2;
constexpr const char* kParentGrabbed = "parent_grabbed";

// A parent that holds the pointer would leave a modeless dialog dead; it gets the pointer back when
// the dialog closes.
void TakeGrab(GtkWidget* dialog, GtkWidget* parent) {
    if (parent == nullptr || gtk_grab_get_current() != parent)
        return;
    g_object_set_data_full(G_OBJECT(dialog), kParentGrabbed, g_object_ref(parent), g_object_unref);
    gtk_grab_remove(parent);
}

void GiveGrabBack(GtkWidget* dialog) {
    if (auto* parent =
            static_cast<GtkWidget*>(g_object_steal_data(G_OBJECT(dialog), kParentGrabbed))) {
        gtk_grab_add(parent);
        g_object_unref(parent);
    }
}

}  // namespace

GtkWidget* GenerateTable(LDialog& dialog, const LDialog::OpenGenData& genData) {
    GtkWidget* table = gtk_table_new(kTableRows, kTableColumns, FALSE);
    LDialogGenContext context(dialog, table, genData.title);
    genData.generator(context);
    context.Finalize();
    return table;
}

bool LDialog::Open(GtkWidget* parent, OpenGenData genData, bool modal) {
    if (IsOpen())
        return ShowAgain(parent);
    GtkWidget* table = Build(parent, genData);
    InitDialog();
    if (IsOpen()) {  // not closed by InitDialog
        EnableControls();
        FitToScreen(Widget(), table);
    }
    if (modal)
        return RunModal(parent);
    RunModeless(parent);
    return true;
}

GtkWidget* LDialog::Build(GtkWidget* parent, const OpenGenData& genData) {
    const auto flags = GtkDialogFlags(GTK_DIALOG_DESTROY_WITH_PARENT |
                                      (genData.noSeparator ? GTK_DIALOG_NO_SEPARATOR : 0));
    GtkWidget* window = NewDialogWindow(parent, genData.title, flags,
                                        {{GTK_STOCK_OK, GTK_RESPONSE_OK},
                                         {GTK_STOCK_CANCEL, GTK_RESPONSE_CANCEL},
                                         {GTK_STOCK_HELP, GTK_RESPONSE_HELP}});
    gtk_dialog_set_has_separator(GTK_DIALOG(window), !genData.noSeparator);
    gtk_dialog_set_default_response(GTK_DIALOG(window), GTK_RESPONSE_ACCEPT);
    gtk_window_set_resizable(GTK_WINDOW(window), FALSE);
    AttachWidget(window);

    Connect(window, "key-press-event", G_CALLBACK(GCHelpKey));
    GtkWidget* table = GenerateTable(*this, genData);
    CreateAccelerators();
    GtkWidget* content = gtk_dialog_get_content_area(GTK_DIALOG(window));
    gtk_box_pack_start(GTK_BOX(content), table, TRUE, TRUE, 0);
    return table;
}

bool LDialog::RunModal(GtkWidget* parent) {
    if (!IsOpen())  // closed by InitDialog
        return false;
    gtk_window_set_modal(GTK_WINDOW(Widget()), TRUE);
    gtk_widget_show_all(Widget());
    const LDisabledParent disabled(parent);
    const std::weak_ptr<const void> life = Life();
    // A handler may have deleted this object, also after it pressed a button of the dialog.
    const LDialogEnd end =
        RunDialog(Widget(), {[this, life] { return life.expired() || CmOk(); },
                             [this, life] { return life.expired() || CmCancel(); },
                             [this, life] {
                                 if (!life.expired())
                                     CmHelp();
                             }});
    if (!life.expired() && end != LDialogEnd::kGone)
        Close(end == LDialogEnd::kOk ? GTK_RESPONSE_OK : GTK_RESPONSE_CANCEL);
    return end == LDialogEnd::kOk;
}

void LDialog::RunModeless(GtkWidget* parent) {
    if (!IsOpen())
        return;
    SetModeless(true);
    gtk_widget_show_all(Widget());
    TakeGrab(Widget(), parent);
    Connect(Widget(), "delete_event", G_CALLBACK(GCExitDlg));
}

bool LDialog::ShowAgain(GtkWidget* parent) {
    if (!IsModeless() || gtk_widget_get_visible(Widget()))
        return false;
    gtk_widget_show_all(Widget());
    gtk_window_present(GTK_WINDOW(Widget()));
    TakeGrab(Widget(), parent);
    return true;
}

gboolean LDialog::GCExitDlg(GtkWidget* widget, GdkEvent*, gpointer host) {
    GiveGrabBack(widget);
    dynamic_cast<LDialog&>(HostOf(host)).CmClose();
    return TRUE;
}

// F1 asks for Help, with a button for it or without.
gboolean LDialog::GCHelpKey(GtkWidget* widget, GdkEventKey* event, gpointer host) {
    auto& self = dynamic_cast<LDialog&>(HostOf(host));
    if (KeyCodeOfEvent(*event) != GDK_KEY_F1)
        return FALSE;
    if (self.IsModeless())
        self.CmHelp();
    else
        gtk_dialog_response(GTK_DIALOG(widget), GTK_RESPONSE_HELP);
    return TRUE;
}

void LDialog::DoOKButton() {
    if (GTK_IS_DIALOG(Widget()))
        gtk_dialog_response(GTK_DIALOG(Widget()), GTK_RESPONSE_OK);
}

void LDialog::DoCANCELButton() {
    if (GTK_IS_DIALOG(Widget()))
        gtk_dialog_response(GTK_DIALOG(Widget()), GTK_RESPONSE_CANCEL);
}
