#include "gui/windows/dialog_frame.h"

#include <algorithm>

#include "gui/display_text.h"
#include "gui/icons.h"
#include "gui/monitor.h"
#include "gui/parent_window.h"
#include "gui/signal_owner.h"
#include "gui/windows/window.h"

namespace {

// Pixels that the window manager and its panels need around a window.
constexpr int kWindowFrame = 64;
constexpr int kScrollBar = 24;

}  // namespace

GtkWidget* NewDialogWindow(GtkWidget* parent, const char* title, GtkDialogFlags flags,
                           std::initializer_list<LDialogButton> buttons) {
    GtkWidget* dialog = gtk_dialog_new_with_buttons(DisplayText(title).c_str(),
                                                    ParentWindow(parent), flags, nullptr, nullptr);
    for (const LDialogButton& button : buttons)
        gtk_dialog_add_button(GTK_DIALOG(dialog), button.stockId, button.response);
    SetWindowIcon(GTK_WINDOW(dialog), kAppIconNumber);
    return dialog;
}

void FitToScreen(GtkWidget* window, GtkWidget* content) {
    gtk_widget_show_all(gtk_bin_get_child(GTK_BIN(window)));
    GtkRequisition whole;
    GtkRequisition inner;
    gtk_widget_size_request(window, &whole);
    gtk_widget_get_child_requisition(content, &inner);
    const GdkRectangle monitor = MonitorOf(window);
    const int tooWide = whole.width - (monitor.width - kWindowFrame);
    const int tooHigh = whole.height - (monitor.height - kWindowFrame);
    if (tooWide <= 0 && tooHigh <= 0)
        return;
    GtkWidget* box = gtk_widget_get_parent(content);
    int position = 0;
    gtk_container_child_get(GTK_CONTAINER(box), content, "position", &position, nullptr);
    const auto kept = GObjectRef<GtkWidget>::Share(content);
    gtk_container_remove(GTK_CONTAINER(box), content);
    GtkWidget* scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_AUTOMATIC,
                                   GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_add_with_viewport(GTK_SCROLLED_WINDOW(scrolled), content);
    gtk_viewport_set_shadow_type(GTK_VIEWPORT(gtk_bin_get_child(GTK_BIN(scrolled))),
                                 GTK_SHADOW_NONE);
    // What gets the focus scrolls into view.
    gtk_container_set_focus_vadjustment(
        GTK_CONTAINER(content), gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scrolled)));
    gtk_container_set_focus_hadjustment(
        GTK_CONTAINER(content), gtk_scrolled_window_get_hadjustment(GTK_SCROLLED_WINDOW(scrolled)));
    const int width = tooWide > 0 ? inner.width - tooWide : inner.width + kScrollBar;
    const int height = tooHigh > 0 ? inner.height - tooHigh : inner.height + kScrollBar;
    gtk_widget_set_size_request(scrolled, std::max(width, 1), std::max(height, 1));
    // The least size that was set before its content grew leaves no room for the bar.
    gtk_widget_set_size_request(window, -1, -1);
    gtk_box_pack_start(GTK_BOX(box), scrolled, TRUE, TRUE, 0);
    gtk_box_reorder_child(GTK_BOX(box), scrolled, position);
    gtk_widget_show(gtk_bin_get_child(GTK_BIN(scrolled)));
    gtk_widget_show(scrolled);
}

LDisabledParent::LDisabledParent(GtkWidget* parent)
    : parent_(GObjectRef<GtkWidget>::Share(parent)),
      was_(parent != nullptr && gtk_widget_get_sensitive(parent) != FALSE) {
    if (!was_)
        return;
    // A window that is disabled forgets the focus; whoever cannot see it would be lost.
    if (GTK_IS_WINDOW(parent))
        focus_ = GObjectRef<GtkWidget>::Share(gtk_window_get_focus(GTK_WINDOW(parent)));
    gtk_widget_set_sensitive(parent, FALSE);
}

LDisabledParent::~LDisabledParent() {
    if (!was_)
        return;
    gtk_widget_set_sensitive(parent_.Get(), TRUE);
    const bool there = focus_ && gtk_widget_get_toplevel(focus_.Get()) == parent_.Get();
    if (there && gtk_window_get_focus(GTK_WINDOW(parent_.Get())) == nullptr)
        gtk_widget_grab_focus(focus_.Get());
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
        if (gone || IsEnded(dialog))
            return LDialogEnd::kGone;
        const int response = gtk_dialog_run(GTK_DIALOG(dialog));
        if (response == GTK_RESPONSE_OK) {
            if (answers.ok())
                return LDialogEnd::kOk;
        } else if (response == GTK_RESPONSE_HELP || response == kCommandHelp) {
            answers.help();
        } else if (answers.cancel()) {
            return gone || IsEnded(dialog) ? LDialogEnd::kGone : LDialogEnd::kCancel;
        }
    }
}
