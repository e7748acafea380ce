#include "desktop/start_on_login.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "desktop/settings_keys.h"
#include "desktop/user_accounts.h"
#include "tests/support/scratch_folder.h"

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
        root_.Write("etc/passwd",
                    "kde:x:1:1:K,D:E:/home/kde:/bin/sh\n"  // one field too many: no home of its own
                    "kde:x:1:1:KDE:/home/kde:/bin/sh\ngnome:x:2:2::/home/gnome:/bin/sh\nnohome:x\n"
                    "xdg:x:3:3::/home/xdg\nplain:x:4:4::/home/plain:\nempty:x:5:5:::\n\n");
    }

    ScratchFolder root_;
    ScopedVariable rootVariable_;
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
                  std::filesystem::perms::all)
            << target;
    }
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
    EXPECT_TRUE(LoadStartOnLogin().isOn);
    EXPECT_EQ(LoadStartOnLogin().mode, 0);
    LAutoRun::SetRun();
    EXPECT_TRUE(LAutoRun::IsRun() && has(kTargets[2]));
    LAutoRun::RemRun();
    EXPECT_FALSE(LAutoRun::IsRun() || has(kTargets[2]));
    for (const char* user : {static_cast<const char*>(nullptr), "nobody", "plain", "empty"}) {
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

    const std::tuple<StartOnLoginPage, std::string, std::string, int> pages[] = {
        {{true, 0}, "1", "0", 0},
        {{true, 1}, "0", "1", 1},
        {{false, 0}, "0", "0", 1},
        {{true, -1}, "0", "0", -1}};
    for (const auto& [page, all, user, mode] : pages) {
        ApplyStartOnLogin(page);
        EXPECT_EQ(kAutoRunForAllSetting.Get(), all);
        EXPECT_EQ(kAutoRunForUserSetting.Get(), user);
        EXPECT_EQ(kRunModeSetting.Get(), mode);
        EXPECT_EQ(has(kTargets[0]), all == "1");
        EXPECT_EQ(has(kTargets[2]), all == "1" || user == "1");
        EXPECT_EQ(LoadStartOnLogin().isOn, all == "1" || user == "1");
    }
    forget();
}

}  // namespace
