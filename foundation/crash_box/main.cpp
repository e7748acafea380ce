// The bug-report questions in a process of their own: the program they are about may be past
// showing a window.
#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "foundation/crash/bug_report.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/standard_streams.h"
#include "foundation/processes/browser.h"

namespace {

class GtkDesk final : public LBugReportDesk {
public:
    bool AskYesNo(const char* title, const char* text) override {
        GtkWidget* const box = gtk_message_dialog_new(
            nullptr, GTK_DIALOG_MODAL, GTK_MESSAGE_QUESTION, GTK_BUTTONS_YES_NO, "%s", text);
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
        return answer == GTK_RESPONSE_YES;
    }
    void OpenPage(const std::string& address) override { OpenInBrowser(address); }
};

}  // namespace

int main(int argc, char** argv) {
    OpenStandardStreams();
    if (!gtk_init_check(&argc, &argv))
        return EXIT_FAILURE;
    const std::string_view option = argc > 1 ? argv[1] : "";
    GtkDesk desk;
    if (option == "--signal" && argc == 3) {
        ReportCrash(desk, std::atoi(argv[2]));
    } else if (option == "--question" && argc == 4) {
        std::puts(desk.AskYesNo(argv[2], argv[3]) ? "yes" : "no");
    } else {
        std::fputs("Usage: lectora-crash-box --signal NUMBER | --question TITLE TEXT\n", stderr);
        return 2;
    }
    return EXIT_SUCCESS;
}
