#include "foundation/crash/bug_report.h"

#include <cstdio>
#include <string_view>

#include "foundation/log/log.h"
#include "foundation/settings/hosts.h"
#include "foundation/threads/progress.h"

namespace {

constexpr unsigned int kPauseMilliseconds = 600;

// Where there is no page to fill in, what the program wrote down is worth keeping.
void OpenReportPage(LBugReportDesk& desk, const char* title, std::string_view page) {
    if (HasWebSite()) {
        desk.OpenPage(WebAddress(page));
        return;
    }
    const std::string text =
        "There is no web page for bug reports yet, so nothing is sent. What Lectora wrote down "
        "about its runs is in the folder\n\n" +
        std::string(gLLog.Folder()) + "\n\nwhere whoever looks after this computer can read it.";
    desk.Tell(title, text.c_str());
}

}  // namespace

void ReportCrash(LBugReportDesk& desk, int signal) {
    constexpr const char* kTitle = "Abnormal Signal Crash";
    char text[1024];
    std::snprintf(
        text, sizeof text,
        "Lectora has crashed with an abnormal signal.\r\n\r\nWould you be willing to complete a "
        "Quillon Software Bug Report so our programmers can try to fix this? If so, please click "
        "Yes and then enter the field to tell us exactly what you were doing and that you received "
        "a \"SIGNAL%d\" code.",
        signal);
    if (desk.AskYesNo(kTitle, text))
        OpenReportPage(desk, kTitle, "/software/bug.html?software=Lectora&version=1.05GTK");
}

void ReportHang(LBugReportDesk& desk) {
    constexpr const char* kTitle = "Abnormal Termination Detected";
    if (!desk.AskYesNo(
            kTitle,
            "Did Lectora hang or crash when last run?\r\n\r\nClick Yes if the program failed. "
            "Click No if it was because of something else (a hard logoff for example) or if you "
            "did not notice anything wrong or don't remember."))
        return;
    LSilentProgress().ProcessWait(kPauseMilliseconds);
    if (desk.AskYesNo(
            kTitle,
            "Would you be willing to complete a Quillon Software Bug Report so our programmers can "
            "try to fix this? Please click Yes and then enter the field to tell us exactly what "
            "you did so we can attempt to repeat it and fix it."))
        OpenReportPage(desk, kTitle,
                       "/software/bug.html?software=Lectora&version=1.05&xi=AbTermOrHang-Gtk");
}
