#include "gui/dialog_frame.h"

#include "gui/display_text.h"
#include "gui/icons.h"
#include "gui/parent_window.h"
#include "gui/signal_owner.h"
#include "gui/window.h"

GtkWidget* NewDialogWindow(GtkWidget* parent, const char* title, GtkDialogFlags flags,
                           std::initializer_list<LDialogButton> buttons) {
    GtkWidget* dialog = gtk_dialog_new_with_buttons(DisplayText(title).c_str(),
                                                    ParentWindow(parent), flags, nullptr, nullptr);
    for (const LDialogButton& button : buttons)
        gtk_dialog_add_button(GTK_DIALOG(dialog), button.stockId, button.response);
    SetWindowIcon(GTK_WINDOW(dialog), kAppIconNumber);
    return dialog;
}

LDisabledParent::LDisabledParent(GtkWidget* parent)
    : parent_(GObjectRef<GtkWidget>::Share(parent)),
      was_(parent != nullptr && gtk_widget_get_sensitive(parent) != FALSE) {
    if (was_)
        gtk_widget_set_sensitive(parent, FALSE);
}

LDisabledParent::~LDisabledParent() {
    if (was_)
        gtk_widget_set_sensitive(parent_.Get(), TRUE);
}

LDialogEnd RunDialog(GtkWidget* dialog, const LDialogAnswers& answers) {
    const auto window = GObjectRef<GtkWidget>::Share(dialog);
    // GTK would wait for ever for the answer of a window that a handler has destroyed.
    bool gone = false;
    LSignalOwner signals;
    signals.Connect(
        dialog, "destroy",
        G_CALLBACK(+[](GtkWidget*, gpointer flag) { *static_cast<bool*>(flag) = true; }), &gone);
    for (;;) {
        if (gone)
            return LDialogEnd::kGone;
        const int response = gtk_dialog_run(GTK_DIALOG(dialog));
        if (response == GTK_RESPONSE_OK) {
            if (answers.ok())
                return LDialogEnd::kOk;
        } else if (response == GTK_RESPONSE_HELP || response == kCommandHelp) {
            answers.help();
        } else if (answers.cancel()) {
            return gone ? LDialogEnd::kGone : LDialogEnd::kCancel;
        }
    }
}
