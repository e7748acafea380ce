// The commands that the toolkit carries out itself.
#include <string>

#include "foundation/processes/browser.h"
#include "foundation/settings/hosts.h"
#include "gui/windows/help_page.h"
#include "gui/windows/splash_screen.h"
#include "gui/windows/window.h"

namespace {

void OpenWebPage(const char* page) {
    OpenInBrowser(WebAddress(std::string(page) + "?software=Lectora&version=1.05GTK"));
}

}  // namespace

void LWindow::CmHelpAbout() {
    LAboutBox::Open(widget_);
}

void LWindow::WMCommand(int command) {
    const LRunningCallback running(Signals().Callbacks());
    switch (command) {
        case kCommandExit:
            return CmExit();
        case kCommandClose:
            return CmClose();
        case kCommandHelpContents:
            return DisplayHelpPage("index");
        case kCommandNothing:
            return;
        case kCommandProductPage:
            return OpenWebPage("lectora/index");
        case kCommandSupportPage:
            return OpenWebPage("lectora/support");
        case kCommandSuggestion:
            return OpenWebPage("software/suggestions.html");
        case kCommandBugReport:
            return OpenWebPage("software/bug.html");
        case kCommandHomePage:
            return OpenWebPage("index");
        case kCommandProductsPage:
            return OpenWebPage("lectora");
        case kCommandAbout:
            return CmHelpAbout();
        default:
            return DeliverCommand(command);
    }
}
