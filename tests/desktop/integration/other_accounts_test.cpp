// What root does for other accounts, and what these have prepared for it.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "desktop/account_home.h"
#include "desktop/desktop_shortcut.h"
#include "desktop/start_on_login.h"
#include "desktop/users_data.h"
#include "tests/support/accounts.h"

namespace {

namespace fs = std::filesystem;

const std::string kMasterEntry = "[Desktop Entry]\nExec=lectora -logon\n";

class OtherAccounts : public ::testing::Test {
protected:
    void SetUp() override {
        if (::geteuid() != 0)
            GTEST_SKIP() << "only root may act as other accounts";
        for (const char* folder :
             {"usr/share/applications/desktop", "outside/lectora", "home/ada/.gnome2",
              "home/ada/Desktop", "home/bea/.config", "home/cid/dotfiles/autostart"})
            fs::create_directories(root_ / folder);
        for (const char* entry : {"", "desktop/"})
            root_.Write("usr/share/applications/" + std::string(entry) + "lectora.desktop",
                        kMasterEntry);
        root_.Write("outside/shadow", "root:secret\n");
        root_.Write("outside/lectora.desktop", "[Desktop Entry]\nExec=lectora %F\n");
        root_.Write("outside/lectora/settings", "k=v\n");
        // Theirs to read and write for everybody: only being their owner's act keeps it whole.
        for (const auto& entry : fs::recursive_directory_iterator(root_ / "outside"))
            fs::permissions(entry.path(), fs::perms::all);
        Link("outside/shadow", "home/ada/.gnome2/session-manual");
        Link("outside", "home/ada/.quillon");
        Link("outside/lectora.desktop", "home/ada/Desktop/lectora.desktop");
        Link("outside", "home/bea/.config/autostart");
        Link("outside", "home/bea/Desktop");
        fs::create_symlink("dotfiles", root_ / "home/cid/.config");
        accounts_.OwnTheirHomes();
    }
    void Link(const std::string& target, const std::string& name) const {
        fs::create_symlink(root_ / target, root_ / name);
    }
    std::map<std::string, std::string> Outside() const {
        std::map<std::string, std::string> all;
        for (const auto& entry : fs::recursive_directory_iterator(root_ / "outside"))
            all[entry.path()] = entry.is_directory() ? "" : ScratchFolder::ReadFile(entry.path());
        return all;
    }

    ScratchFolder root_;
    ScopedVariable rootVariable_{"LECTORA_ROOT", root_.Path().c_str()};
    Accounts accounts_{root_, {"ada", "bea", "cid"}};
};

TEST_F(OtherAccounts, LeadRootNowhereByTheLinksOfTheirHomes) {
    const auto before = Outside();
    for (const char* home : {"home/ada", "home/bea"}) {
        const ScopedVariable variable("HOME", (root_ / home).c_str());
        CreateDesktopShortcut();
    }
    SetAllUserRun(true);
    EXPECT_EQ(Outside(), before);
    EXPECT_EQ(root_.Read("home/cid/dotfiles/autostart/lectora.desktop"), kMasterEntry)
        << "a link that stays in the home is its owner's way";
    SetAllUserRun(false);
    EXPECT_FALSE(root_.Has("home/cid/dotfiles/autostart/lectora.desktop"));
    RemoveDesktopShortcuts();
    RemoveUsersData();
    EXPECT_EQ(Outside(), before);
}

TEST_F(OtherAccounts, AreActedForWithNothingOfRoots) {
    const LUserAccount cid = LGetUsersAccounts()[2];
    ::umask(0);
    EXPECT_TRUE(InHomeOf(cid, [&](const LHomeFolder& home) {
        const UniqueFd folder = home.OpenFolder("");
        return ::getuid() == cid.user && ::getegid() == cid.group && ::setuid(0) != 0 &&
               ::getgroups(0, nullptr) == 1 && ::umask(0) == 022 &&
               PlaceFile(folder.Get(), "made", "by cid", 0644, true);
    }));
    ::umask(022);
    struct stat made = {};
    ASSERT_EQ(::stat((root_ / "home/cid/made").c_str(), &made), 0);
    EXPECT_EQ(made.st_uid, cid.user);
    EXPECT_FALSE(InHomeOf(cid, [](const LHomeFolder&) { return false; }));
    EXPECT_FALSE(InHomeOf(cid, [](const LHomeFolder&) -> bool { ::_exit(1); }));
    for (const auto& [home, user] :
         {std::pair{std::string(), cid.user}, {cid.home, kNoUser}, {root_ / "home/none", cid.user}})
        EXPECT_FALSE(InHomeOf({"cid", home, user, cid.group}, [](auto&) { return true; }));
}

}  // namespace
