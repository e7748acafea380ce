#include "gui/windows/splash_screen.h"

#include "gui/accessible.h"
#include "gui/icons.h"
#include "gui/parent_window.h"
#include "gui/windows/dialog_frame.h"

namespace {

constexpr int kSplashShownMs = 5000;
constexpr int kSplashWidth = 344;
constexpr GdkColor kWhite{0, 0xFFFF, 0xFFFF, 0xFFFF};
constexpr GdkColor kInk{0, 0x2020, 0x2424, 0x2828};  // a dark theme's own letters are white

void AddLine(GtkWidget* box, GtkWidget* line) {
    gtk_widget_modify_fg(line, GTK_STATE_NORMAL, &kInk);
    gtk_box_pack_start(GTK_BOX(box), line, FALSE, FALSE, 4);
}

// White content area of a dialog, holding the items around a clickable image.
GtkWidget* AddItems(GtkWidget* dialog) {
    GtkWidget* background = gtk_event_box_new();
    gtk_widget_modify_bg(background, GTK_STATE_NORMAL, &kWhite);
    GtkWidget* items = gtk_vbox_new(FALSE, 0);
    GtkWidget* imageBox = gtk_event_box_new();
    gtk_widget_modify_bg(imageBox, GTK_STATE_NORMAL, &kWhite);
    LSplashScreen::CreateItems(items, imageBox);
    gtk_container_add(GTK_CONTAINER(background), items);
    gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(GTK_DIALOG(dialog))), background, TRUE,
                       TRUE, 0);
    return imageBox;
}

}  // namespace

struct LSplashCallbacks {
    static gboolean GCClick(GtkWidget*, GdkEventButton*, gpointer splash) {
        static_cast<LSplashScreen*>(splash)->Close();
        return TRUE;
    }
    static void GCDestroyed(GtkWidget*, gpointer splash) {
        static_cast<LSplashScreen*>(splash)->dialog_ = nullptr;
    }
};

void LSplashScreen::CreateItems(GtkWidget* box, GtkWidget* imageBox) {
    GtkWidget* image = NewIconImage(kAppIconNumber);
    SetAccessibleName(image, "Lectora");
    gtk_container_add(GTK_CONTAINER(imageBox), image);
    gtk_box_pack_start(GTK_BOX(box), imageBox, TRUE, TRUE, 0);
    GtkWidget* name = gtk_label_new(nullptr);
    gtk_label_set_markup(GTK_LABEL(name), "<span weight=\"bold\">Lectora</span>");
    AddLine(box, name);
    AddLine(box, gtk_label_new("Lectora v 1.05"));
    AddLine(box, gtk_label_new("Quillon"));
}

void LSplashScreen::Display(GtkWidget* parent) {
    if (dialog_ != nullptr)
        return;
    dialog_ = gtk_dialog_new();
    GtkWindow* window = GTK_WINDOW(dialog_);
    gtk_window_set_title(window, "Welcome");
    gtk_window_set_type_hint(window, GDK_WINDOW_TYPE_HINT_SPLASHSCREEN);
    gtk_window_set_transient_for(window, ParentWindow(parent));
    gtk_window_set_decorated(window, FALSE);
    gtk_window_set_deletable(window, FALSE);
    gtk_window_set_keep_above(window, TRUE);
    gtk_window_set_modal(window, FALSE);
    gtk_window_set_skip_taskbar_hint(window, TRUE);
    gtk_window_set_resizable(window, FALSE);
    // It must not take the keyboard from the text box that the user is about to type into.
    gtk_window_set_accept_focus(window, FALSE);
    gtk_dialog_set_has_separator(GTK_DIALOG(dialog_), FALSE);
    gtk_widget_modify_bg(dialog_, GTK_STATE_NORMAL, &kWhite);
    gtk_widget_set_size_request(dialog_, kSplashWidth, 320);
    gtk_container_set_border_width(GTK_CONTAINER(gtk_dialog_get_content_area(GTK_DIALOG(dialog_))),
                                   1);
    g_signal_connect(AddItems(dialog_), "button-press-event", G_CALLBACK(LSplashCallbacks::GCClick),
                     this);
    g_signal_connect(dialog_, "destroy", G_CALLBACK(LSplashCallbacks::GCDestroyed), this);
    gtk_widget_show_all(dialog_);
    timer_.Start(kSplashShownMs, [this] { Close(); });
}

void LSplashScreen::Close() {
    timer_.Stop();
    if (dialog_ != nullptr)
        gtk_widget_destroy(dialog_);  // the "destroy" handler forgets it
}

void LAboutBox::Open(GtkWidget* parent) {
    GtkWidget* dialog = NewDialogWindow(parent, "Lectora", GTK_DIALOG_DESTROY_WITH_PARENT,
                                        {{GTK_STOCK_OK, GTK_RESPONSE_OK}});
    gtk_dialog_set_has_separator(GTK_DIALOG(dialog), TRUE);
    gtk_window_set_resizable(GTK_WINDOW(dialog), FALSE);
    gtk_widget_set_size_request(dialog, kSplashWidth, 340);
    AddItems(dialog);
    g_signal_connect(dialog, "response", G_CALLBACK(gtk_widget_destroy), nullptr);
    gtk_widget_show_all(dialog);
}
