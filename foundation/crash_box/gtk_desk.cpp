#include "foundation/crash_box/gtk_desk.h"

#include "foundation/files/machine_root.h"
#include "foundation/processes/browser.h"

namespace {

// The user's answer, a response code of GTK's.
gint RunBox(GtkMessageType type, GtkButtonsType buttons, const char* title, const char* text) {
    GtkWidget* const box =
        gtk_message_dialog_new(nullptr, GTK_DIALOG_MODAL, type, buttons, "%s", text);
    GtkWindow* const window = GTK_WINDOW(box);
    gtk_window_set_title(window, title);
    GError* missing = nullptr;
    gtk_window_set_icon_from_file(window, IconPath(1).c_str(), &missing);
    g_clear_error(&missing);
    gtk_window_set_position(window, GTK_WIN_POS_CENTER);
    gtk_window_set_keep_above(window, TRUE);  // the crashed window cannot give way
    const gint answer = gtk_dialog_run(GTK_DIALOG(box));
    gtk_widget_destroy(box);
    while (gtk_events_pending())
        gtk_main_iteration();
    return answer;
}

}  // namespace

bool GtkDesk::AskYesNo(const char* title, const char* text) {
    return RunBox(GTK_MESSAGE_QUESTION, GTK_BUTTONS_YES_NO, title, text) == GTK_RESPONSE_YES;
}

void GtkDesk::OpenPage(const std::string& address) {
    OpenInBrowser(address);
}

void GtkDesk::Tell(const char* title, const char* text) {
    RunBox(GTK_MESSAGE_INFO, GTK_BUTTONS_OK, title, text);
}
