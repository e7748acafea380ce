#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/browser.h"
#include "foundation/hosts.h"
#include "foundation/settings.h"
#include "tests/support/scratch_folder.h"

namespace {

TEST(Browser, TheDesktopsOwnCommandWhenInstalledElseTheGenericOne) {
    struct Case {
        const char* installed;
        bool kde;
        const char* command;
    };
    const Case cases[] = {
        {"none", false, "xdg-open \"http://a/b?c=d&e\""},
        {"gnome-open", false, "gnome-open \"http://a/b?c=d&e\""},
        {"gnome-open", true, "xdg-open \"http://a/b?c=d&e\""},
        {"kfmclient", true, "kfmclient exec \"http://a/b?c=d&e\""},
        {"kfmclient", false, "xdg-open \"http://a/b?c=d&e\""},
    };
    for (const Case& each : cases) {
        const ScratchFolder folder;
        std::filesystem::create_directory(folder / "second");
        folder.WriteProgram("second/" + std::string(each.installed), "");
        const ScopedVariable path("PATH", (folder.Path() + "::" + (folder / "second")).c_str());
        const ScopedVariable kde("KDE_FULL_SESSION", each.kde ? "true" : nullptr);
        EXPECT_EQ(BrowserCommand("http://a/b?c=d&e"), each.command);
    }
}

// Were it waited for, nobody would ever read from the FIFO.
TEST(Browser, TheShellReadsTheAddressAsOneLiteralWordOrNotAtAll) {
    const ScratchFolder folder;
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    folder.WriteProgram("gnome-open", "printf '%s|' \"$@\" >" + (folder / "fifo"));
    const ScopedVariable path("PATH", folder.Path().c_str());
    const ScopedVariable kde("KDE_FULL_SESSION", nullptr);
    EXPECT_TRUE(OpenInBrowser("http://a/ b\"$(touch x)`id`\\;&\n*"));
    EXPECT_EQ(folder.Read("fifo"), "http://a/%20b%22%24(touch%20x)%60id%60%5C;&%0A*|");
    const std::size_t room = 259 - std::string("gnome-open \"\"").size();
    EXPECT_EQ(BrowserCommand(std::string(room, 'a')).size(), 259u);
    EXPECT_FALSE(OpenInBrowser(std::string(room + 1, 'a')));
}

TEST(Hosts, TheMachineWideSettingsStandBeforeTheDefaults) {
    const std::string components = ComponentsHost();
    LSettingSetString("Hosts", "Web", "127.0.0.1:8080");
    EXPECT_EQ(WebAddress("lectora/index"), "http://127.0.0.1:8080/lectora/index");
    EXPECT_EQ(WebAddress("/a?b=c"), "http://127.0.0.1:8080/a?b=c");
    EXPECT_EQ(ComponentsHost(), components);
    LSettingSetString("Hosts", "Web", "");
    EXPECT_FALSE(WebHost().empty()) << "an empty entry counts as none";
    LSettingSetString("Hosts", "Web", nullptr);
}

}  // namespace
