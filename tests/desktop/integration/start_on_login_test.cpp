#include "desktop/start_on_login.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "desktop/settings_keys.h"
#include "desktop/user_accounts.h"
#include "tests/support/accounts.h"

namespace {

const std::string kEntry = "[Desktop Entry]\nExec=lectora\n";

// A machine with accounts whose homes are prepared for one mechanism or another.
class StartOnLogin : public ::testing::Test {
protected:
    StartOnLogin() : rootVariable_("LECTORA_ROOT", root_.Path().c_str()) {
        for (const char* folder :
             {"etc", "usr/share/applications/desktop", "home/kde/.kde/AutoStart",
              "home/kde/.config", "home/gnome/.gnome2", "home/gnome/.config", "home/xdg/.config",
              "home/plain"})
            std::filesystem::create_directories(root_ / folder);
        root_.Write("usr/share/applications/desktop/lectora.desktop", kEntry);
        root_.Write("home/gnome/.gnome2/session-manual", "[Default]\nnum_clients=1\n");
        accounts_.OwnTheirHomes();
    }

    uid_t OwnerOf(const std::string& path) const {
        struct stat status = {};
        return ::stat((root_ / path).c_str(), &status) == 0 ? status.st_uid : kNoUser;
    }

    ScratchFolder root_;
    ScopedVariable rootVariable_;
    // One field too many: no home of its own.
    Accounts accounts_{root_,
                       {"kde", "gnome", "xdg", "plain"},
                       "kde:x:1:1:K,D:E:/home/kde:/bin/sh\nnohome:x\nempty:x:5:5:::\n\n"};
    static constexpr const char* kTargets[] = {"home/kde/.kde/AutoStart/lectora.desktop",
                                               "home/gnome/.gnome2/lectora.desktop",
                                               "home/xdg/.config/autostart/lectora.desktop"};
};

TEST_F(StartOnLogin, EachHomeGetsTheEntryByItsFirstMechanismOnly) {
    // A link in the entry's place must not lead root elsewhere.
    root_.Write("precious", "p");
    std::filesystem::create_symlink(root_ / "precious", root_ / kTargets[0]);
    SetAllUserRun(true);
    EXPECT_EQ(root_.Read("precious"), "p");
    for (const char* target : kTargets) {
        EXPECT_EQ(root_.Read(target), kEntry) << target;
        EXPECT_EQ(std::filesystem::status(root_ / target).permissions(),
                  std::filesystem::perms(0644))
            << target;
    }
    EXPECT_EQ(OwnerOf(kTargets[2]), accounts_.IdOf("xdg"));
    EXPECT_EQ(OwnerOf("home/xdg/.config/autostart"), accounts_.IdOf("xdg"));
    for (const char* other : {"home/kde/.config/autostart", "home/gnome/.config/autostart"})
        EXPECT_FALSE(root_.Has(other)) << other;
    EXPECT_TRUE(std::filesystem::is_empty(root_ / "home/plain"));
    EXPECT_EQ(root_.Read("home/gnome/.gnome2/session-manual"),
              "[Default]\r\nnum_clients=2\r\n1,RestartStyleHint=3\r\n1,Priority=50\r\n"
              "1,RestartCommand=lectora\r\n1,Program=lectora\r\n\r\n");
    SetAllUserRun(false);
    for (const char* target : kTargets)
        EXPECT_FALSE(root_.Has(target)) << target;
}

TEST_F(StartOnLogin, TheSessionFileLosesItsFirstClientOfOursAndKeepsTheOthersNumbers) {
    const std::string file = "home/gnome/.gnome2/session-manual";
    std::string clients;
    for (const char* client : {"0,RestartCommand=a", "1,RestartCommand=b", "2,Program=lectora",
                               "2,RestartCommand=lectora", "2,Priority=50", "2,RestartStyleHint=3",
                               "3,RestartCommand=lectora"})
        clients += std::string(client) + "\r\n";
    root_.Write(file, "[Default]\r\nnum_clients=4\r\n" + clients + "\r\n");
    SetAllUserRun(false);
    EXPECT_EQ(root_.Read(file),
              "[Default]\r\nnum_clients=1\r\n0,RestartCommand=a\r\n"
              "1,RestartCommand=b\r\n3,RestartCommand=lectora\r\n\r\n");
}

// One case, because all of it is kept in one place.
TEST_F(StartOnLogin, TheChoiceIsKeptAndCarriedOut) {
    const auto forget = [] {
        kAutoRunForAllSetting.Delete();
        kAutoRunForUserSetting.Delete();
        kRunModeSetting.Delete();
    };
    const auto has = [&](const char* target) { return root_.Has(target); };
    forget();
    EXPECT_TRUE(LAutoRun::IsRun()) << "on where nothing was chosen";
    EXPECT_FALSE(LAutoRun::IsRunUser());
    EXPECT_EQ(LoadStartOnLogin(), (StartOnLoginPage{false, 0})) << "there is no entry";
    ApplyStartOnLogin({false, 1});
    EXPECT_EQ(kAutoRunForAllSetting.Get(), "") << "nothing was changed";
    LAutoRun::SetRun();
    EXPECT_TRUE(LAutoRun::IsRun() && has(kTargets[2]));
    LAutoRun::RemRun();
    EXPECT_FALSE(LAutoRun::IsRun() || has(kTargets[2]));
    for (const char* user : {"nobody", "plain", "empty"}) {
        const ScopedVariable name("USERNAME", user);
        LAutoRun::SetRunUser();
        EXPECT_EQ(kAutoRunForUserSetting.Get(), "") << "what could not be done is not recorded";
    }
    const ScopedVariable name("USERNAME", "xdg");
    LAutoRun::SetRunUser();
    EXPECT_TRUE(LAutoRun::IsRunUser() && has(kTargets[2]) && !has(kTargets[0]));
    LAutoRun::RemRunUser();
    EXPECT_FALSE(LAutoRun::IsRunUser() || has(kTargets[2]));
    kAutoRunForUserSetting.Set("1");
    LAutoRun::RemRunUser();  // there is nothing to remove any more
    EXPECT_TRUE(LAutoRun::IsRunUser());

    kAutoRunForUserSetting.Delete();
    const std::tuple<StartOnLoginPage, std::string, std::string, int> pages[] = {
        {{true, 0}, "1", "0", 0},
        {{true, 1}, "0", "1", 1},
        {{false, 0}, "0", "0", 1},
        {{true, 0}, "1", "0", 0},
        {{true, -1}, "0", "0", -1}};
    for (const auto& [page, all, user, mode] : pages) {
        EXPECT_EQ(ApplyStartOnLogin(page), "");
        EXPECT_EQ(kAutoRunForAllSetting.Get(), all);
        EXPECT_EQ(kAutoRunForUserSetting.Get(), user);
        EXPECT_EQ(kRunModeSetting.Get(), mode);
        EXPECT_EQ(has(kTargets[0]), all == "1");
        EXPECT_EQ(has(kTargets[2]), all == "1" || user == "1");
        EXPECT_EQ(LoadStartOnLogin().isOn, all == "1" || user == "1");
    }
    const ScopedVariable homeless("USERNAME", "plain");
    EXPECT_NE(ApplyStartOnLogin({true, 1}), "") << "this desktop keeps no list";
    forget();
}

}  // namespace
