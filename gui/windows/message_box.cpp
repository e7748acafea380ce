#include "gui/windows/message_box.h"

#include "gui/display_text.h"
#include "gui/icons.h"
#include "gui/parent_window.h"

namespace {

// A long path has no blank at which its line could be broken.
void BreakAnywhere(GtkWidget* label, gpointer) {
    if (GTK_IS_LABEL(label))
        gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
}

GtkWidget* NewMessageBox(GtkWidget* parent, GtkMessageType type, GtkButtonsType buttons,
                         const char* title, const char* primary, const char* secondary) {
    GtkWidget* box = gtk_message_dialog_new(ParentWindow(parent), GTK_DIALOG_MODAL, type, buttons,
                                            "%s", DisplayText(primary).c_str());
    if (secondary != nullptr && *secondary != '\0')
        gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(box), "%s",
                                                 DisplayText(secondary).c_str());
    gtk_container_forall(
        GTK_CONTAINER(gtk_message_dialog_get_message_area(GTK_MESSAGE_DIALOG(box))), BreakAnywhere,
        nullptr);
    gtk_window_set_title(GTK_WINDOW(box), DisplayText(title).c_str());
    SetWindowIcon(GTK_WINDOW(box), kAppIconNumber);
    return box;
}

int RunAndDestroy(GtkWidget* box) {
    const int response = gtk_dialog_run(GTK_DIALOG(box));
    gtk_widget_destroy(box);
    return response;
}

}  // namespace

int MessageBoxRun(GtkWidget* parent, GtkMessageType type, GtkButtonsType buttons, const char* title,
                  const char* primary, const char* secondary) {
    return RunAndDestroy(NewMessageBox(parent, type, buttons, title, primary, secondary));
}

int MessageBoxRun(GtkWidget* parent, GtkMessageType type, std::span<const LBoxButton> buttons,
                  const char* title, const char* primary, const char* secondary) {
    GtkWidget* box = NewMessageBox(parent, type, GTK_BUTTONS_NONE, title, primary, secondary);
    for (const LBoxButton& button : buttons)
        gtk_dialog_add_button(GTK_DIALOG(box), button.label, button.response);
    gtk_dialog_set_default_response(GTK_DIALOG(box), buttons.front().response);
    return RunAndDestroy(box);
}

int MessageBoxRunYesNoCancel(GtkWidget* parent, const char* title, const char* primary,
                             const char* secondary) {
    GtkWidget* box =
        NewMessageBox(parent, GTK_MESSAGE_QUESTION, GTK_BUTTONS_NONE, title, primary, secondary);
    GtkDialog* dialog = GTK_DIALOG(box);
    gtk_dialog_add_button(dialog, GTK_STOCK_YES, GTK_RESPONSE_YES);
    gtk_dialog_add_button(dialog, GTK_STOCK_NO, GTK_RESPONSE_NO);
    gtk_dialog_add_button(dialog, GTK_STOCK_CANCEL, GTK_RESPONSE_CANCEL);
    gtk_dialog_set_default_response(dialog, GTK_RESPONSE_CANCEL);
    return RunAndDestroy(box);
}
