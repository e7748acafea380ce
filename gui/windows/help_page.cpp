#include "gui/windows/help_page.h"

#include <glib.h>

#include <string>

#include "foundation/files/machine_root.h"
#include "foundation/processes/browser.h"
#include "foundation/settings/hosts.h"
#include "gui/windows/message_box.h"

void DisplayHelpPage(const char* page) {
    const std::string file =
        MachinePath("/opt/quillon/lectora/share/help/" + std::string(page) + ".html");
    const bool isInstalled = g_file_test(file.c_str(), G_FILE_TEST_IS_REGULAR) != FALSE;
    if (!HasBrowser() || (!isInstalled && !HasWebSite())) {
        MessageBoxRun(
            nullptr, GTK_MESSAGE_INFO, GTK_BUTTONS_OK, "Lectora",
            isInstalled ? "No program that shows web pages was found."
                        : "The help pages are not installed.",
            ((isInstalled ? "The help page lies at " : "This page is missing: ") + file).c_str());
        return;
    }
    if (!isInstalled) {
        OpenInBrowser(WebAddress("lectora/help/" + std::string(page)));
        return;
    }
    char* address = g_filename_to_uri(file.c_str(), nullptr, nullptr);
    if (address != nullptr)
        OpenInBrowser(address);
    g_free(address);
}
