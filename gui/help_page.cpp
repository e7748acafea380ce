#include "gui/help_page.h"

#include <glib.h>

#include <string>

#include "foundation/browser.h"
#include "foundation/hosts.h"
#include "foundation/machine_root.h"

void DisplayHelpPage(const char* page) {
    const std::string file =
        MachinePath("/opt/quillon/lectora/share/help/" + std::string(page) + ".html");
    if (!g_file_test(file.c_str(), G_FILE_TEST_IS_REGULAR)) {
        OpenInBrowser(WebAddress("lectora/help/" + std::string(page)));
        return;
    }
    char* address = g_filename_to_uri(file.c_str(), nullptr, nullptr);
    if (address != nullptr)
        OpenInBrowser(address);
    g_free(address);
}
