#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "foundation/browser.h"
#include "foundation/hosts.h"
#include "foundation/settings.h"
#include "tests/foundation/scratch_folder.h"

namespace {

TEST(Browser, TheDesktopsOwnCommandWhenInstalledElseTheGenericOne) {
    struct Case {
        const char* installed;
        bool kde;
        const char* command;
    };
    const Case cases[] = {
        {"", false, "xdg-open \"http://a/b?c=d&e\" &"},
        {"", true, "xdg-open \"http://a/b?c=d&e\" &"},
        {"gnome-open", false, "gnome-open \"http://a/b?c=d&e\""},
        {"gnome-open", true, "xdg-open \"http://a/b?c=d&e\" &"},
        {"kfmclient", true, "kfmclient exec \"http://a/b?c=d&e\""},
        {"kfmclient", false, "xdg-open \"http://a/b?c=d&e\" &"},
    };
    for (const Case& each : cases) {
        const ScratchFolder folder;
        if (*each.installed)
            folder.WriteProgram(each.installed, "");
        const ScopedVariable path("PATH", folder.Path().c_str());
        const ScopedVariable kde("KDE_FULL_SESSION", each.kde ? "true" : nullptr);
        EXPECT_EQ(BrowserCommand("http://a/b?c=d&e"), each.command);
    }
}

TEST(Browser, TheShellReadsTheAddressAsOneLiteralWord) {
    const ScratchFolder folder;
    folder.WriteProgram("gnome-open", "printf '%s|' \"$@\" >" + (folder / "opened"));
    const ScopedVariable path("PATH", (folder.Path() + ":/usr/bin:/bin").c_str());
    const ScopedVariable kde("KDE_FULL_SESSION", nullptr);
    EXPECT_TRUE(OpenInBrowser("http://a/ b\"$(touch x)`id`\\;&\n*"));
    EXPECT_EQ(folder.Read("opened"), "http://a/%20b%22%24(touch%20x)%60id%60%5C;&%0A*|");
}

TEST(Browser, ACommandOf259CharactersIsTheLongest) {
    const ScratchFolder folder;
    folder.WriteProgram("gnome-open", "");
    const ScopedVariable path("PATH", folder.Path().c_str());
    const ScopedVariable kde("KDE_FULL_SESSION", nullptr);
    const std::size_t room = 259 - std::string("gnome-open \"\"").size();
    EXPECT_EQ(BrowserCommand(std::string(room, 'a')).size(), 259u);
    EXPECT_EQ(BrowserCommand(std::string(room + 1, 'a')), "");
    EXPECT_FALSE(OpenInBrowser(std::string(room + 1, 'a')));
}

TEST(Browser, AGenericOpenerThatStaysDoesNotHoldTheCallerUp) {
    const ScratchFolder folder;
    folder.WriteProgram("xdg-open", "echo \"$1\" >" + (folder / "opened") + "\nexec /bin/sleep 3");
    const ScopedVariable path("PATH", folder.Path().c_str());
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(OpenInBrowser("http://page"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    while (folder.Read("opened").empty() &&
           std::chrono::steady_clock::now() - start < std::chrono::seconds(10))
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(folder.Read("opened"), "http://page\n");
}

TEST(Hosts, TheMachineWideSettingsStandBeforeTheDefaults) {
    LSettingSetString("Hosts", "Web", "127.0.0.1:8080");
    EXPECT_EQ(WebHost(), "127.0.0.1:8080");
    EXPECT_EQ(WebAddress("lectora/index"), "http://127.0.0.1:8080/lectora/index");
    EXPECT_EQ(WebAddress("/a?b=c"), "http://127.0.0.1:8080/a?b=c");
    const std::string components = ComponentsHost();
    LSettingSetString("Hosts", "Web", "");
    EXPECT_EQ(WebAddress(""), "http://" + WebHost() + "/") << "an empty entry counts as none";
    EXPECT_FALSE(WebHost().empty());
    LSettingSetString("Hosts", "Web", nullptr);
    LSettingSetString("Hosts", "Components", "elsewhere.test");
    EXPECT_EQ(ComponentsHost(), "elsewhere.test");
    EXPECT_NE(WebHost(), "elsewhere.test");
    LSettingSetString("Hosts", "Components", nullptr);
    EXPECT_EQ(ComponentsHost(), components);
    EXPECT_NE(ReportHost(), "");
}

}  // namespace
