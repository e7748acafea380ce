// The bug-report questions in a process of their own: the program they are about may be past
// showing a window.
#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "foundation/crash/bug_report.h"
#include "foundation/crash_box/gtk_desk.h"
#include "foundation/files/standard_streams.h"

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
    } else if (option == "--message" && argc == 4) {
        desk.Tell(argv[2], argv[3]);
    } else {
        std::fputs(
            "Usage: lectora-crash-box --signal NUMBER | --question TITLE TEXT | --message TITLE "
            "TEXT\n",
            stderr);
        return 2;
    }
    return EXIT_SUCCESS;
}
