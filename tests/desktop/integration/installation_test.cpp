#include "desktop/installation.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <map>

#include "desktop/desktop_shortcut.h"
#include "desktop/packages.h"
#include "desktop/root_prompt.h"
#include "desktop/watched_command.h"
#include "foundation/files/lock_file.h"
#include "tests/support/accounts.h"
#include "tests/support/forked.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;

// A tree to install and a machine to install it on.
class Installation : public ::testing::Test {
protected:
    Installation() : rootVariable_("LECTORA_ROOT", root_.Path().c_str()) {
        for (const char* folder :
             {"opt/quillon/lectora/bin", "opt/quillon/lectora/share/help",
              "opt/quillon/lectora/etc", "usr/bin", "usr/share/applications/desktop"})
            fs::create_directories(tree_ / folder);
        tree_.WriteProgram(kProgram, "echo 1");
        tree_.Write("opt/quillon/lectora/share/help/index.html", std::string(200000, 'h'));
        tree_.Write("usr/share/applications/lectora.desktop", "[Desktop Entry]\n");
        tree_.Write("usr/share/applications/desktop/lectora.desktop", "[Desktop Entry]\n");
        fs::create_symlink("/opt/quillon/lectora/bin/lectora", tree_ / "usr/bin/lectora");
        fs::create_directories(root_ / "opt");  // every machine has these
        fs::create_directories(root_ / "usr/bin");
        root_.Write("usr/bin/other", "somebody's");
        before_ = Everything();
    }

    // Each path on the machine with what it holds.
    std::map<std::string, std::string> Everything() const {
        std::map<std::string, std::string> all;
        for (const auto& entry : fs::recursive_directory_iterator(root_.Path())) {
            const std::string name = entry.path().string().substr(root_.Path().size() + 1);
            all[name] = entry.is_symlink()        ? "-> " + fs::read_symlink(entry.path()).string()
                        : entry.is_regular_file() ? root_.Read(name)
                                                  : "folder";
        }
        return all;
    }
    void ExpectInstalled() const {
        for (const auto& entry : fs::recursive_directory_iterator(tree_.Path())) {
            const std::string name = entry.path().string().substr(tree_.Path().size() + 1);
            if (!entry.is_directory() && !entry.is_symlink()) {
                EXPECT_EQ(root_.Read(name), tree_.Read(name)) << name;
            }
        }
        EXPECT_EQ(fs::read_symlink(root_ / "usr/bin/lectora"), "/opt/quillon/lectora/bin/lectora");
        for (const char* path : {kProgram, "opt/quillon/lectora", "opt/quillon"})
            EXPECT_EQ(fs::status(root_ / path).permissions(), fs::perms(0755)) << path;
        for (const auto& entry : fs::recursive_directory_iterator(root_.Path()))
            EXPECT_TRUE(entry.is_symlink() ||
                        (entry.status().permissions() & fs::perms::others_write) == fs::perms::none)
                << entry.path();
    }

    static constexpr const char* kProgram = "opt/quillon/lectora/bin/lectora";
    ScratchFolder tree_;
    ScratchFolder root_;
    ScopedVariable rootVariable_;
    std::map<std::string, std::string> before_;
};

TEST_F(Installation, LeavesNothingBehindHoweverOftenItWasDone) {
    EXPECT_NE(RemoveInstallation({}), "") << "nothing is installed yet";
    const mode_t mask = ::umask(077);
    EXPECT_EQ(InstallTree(tree_.Path()), "");
    ::umask(mask);
    ExpectInstalled();
    const auto once = Everything();
    for (const char* open : {"", "/hotkey_"}) {  // as older versions made them
        fs::create_directories(root_ / "opt/quillon/lectora/etc" + open);
        fs::permissions(root_ / "opt/quillon/lectora/etc" + open, fs::perms::all);
    }
    EXPECT_EQ(InstallTree(tree_.Path()), "");
    ExpectInstalled();
    fs::remove(root_ / "opt/quillon/lectora/etc/hotkey_");
    EXPECT_EQ(Everything(), once);
    // A new version: a changed file, a new one, and one that is no longer part of it.
    tree_.WriteProgram(kProgram, "echo 2");
    tree_.Write("usr/share/applications/new", "new");
    fs::remove(tree_ / "opt/quillon/lectora/share/help/index.html");
    EXPECT_EQ(InstallTree(tree_.Path()), "");
    ExpectInstalled();
    EXPECT_FALSE(root_.Has("opt/quillon/lectora/share/help/index.html"));
    EXPECT_EQ(RemoveInstallation({}), "");
    EXPECT_EQ(Everything(), before_);

    EXPECT_EQ(InstallTree(tree_.Path()), "");
    root_.Write("opt/quillon/lectora/etc/hotkey", "key=1");
    root_.Write("usr/share/applications/theirs", "x");
    EXPECT_EQ(RemoveInstallation({}), "");
    EXPECT_TRUE(root_.Has("opt/quillon/lectora/etc/hotkey")) << "settings stay unless asked for";
    EXPECT_TRUE(root_.Has("usr/share/applications/theirs"));
    EXPECT_FALSE(root_.Has("usr/share/applications/desktop"));
    EXPECT_EQ(InstallTree(tree_.Path()), "");
    EXPECT_EQ(RemoveInstallation({.machineSettings = true}), "");
    EXPECT_FALSE(root_.Has("opt/quillon"));
}

TEST_F(Installation, ChangesNothingWhenItCannotBeDoneWhole) {
    EXPECT_NE(InstallTree(tree_ / "missing"), "");
    root_.Write("usr/bin/lectora", "somebody's own");
    EXPECT_NE(InstallTree(tree_.Path()).find("has not placed it"), std::string::npos);
    EXPECT_EQ(root_.Read("usr/bin/lectora"), "somebody's own");
    fs::remove(root_ / "usr/bin/lectora");
    fs::create_directories(root_ / "opt/quillon/lectora");
    LLockFile other;
    ASSERT_TRUE(other.Lock((root_ / "opt/quillon/lectora/install.run").c_str()));
    EXPECT_NE(InstallTree(tree_.Path()), "") << "another one is at it";
    other.Unlock();
    fs::remove_all(root_ / "opt/quillon");

    for (const bool hasOlder : {false, true}) {
        if (hasOlder) {
            EXPECT_EQ(InstallTree(tree_.Path()), "");
            tree_.Write("opt/quillon/lectora/share/added", "new");
            tree_.WriteProgram(kProgram, "echo 3");
        }
        const auto untouched = Everything();
        // No room for the large file; a user who may not.
        for (const bool full : {true, false}) {
            EXPECT_EQ(RunForked([&]() -> int {
                          signal(SIGXFSZ, SIG_IGN);
                          const rlimit limit{100000, 100000};
                          if (full && setrlimit(RLIMIT_FSIZE, &limit) != 0)
                              return 77;
                          if (!full && getuid() == 0 && setuid(65534) != 0)
                              return 77;
                          const std::string trouble = InstallTree(tree_.Path());
                          return full ? trouble.find("too large") == std::string::npos
                                      : trouble.find("as root") == std::string::npos;
                      }),
                      0);
            EXPECT_EQ(Everything(), untouched) << full;
        }
    }
    // The user stops it, at each step at which that may happen.
    EXPECT_EQ(RemoveInstallation({}), "");
    for (int step = 1, asked = step; asked >= step; ++step) {
        asked = 0;
        double last = -1;
        const std::string trouble = InstallTree(tree_.Path(), [&](const std::string&, double done) {
            EXPECT_GT(done, last);
            last = done;
            return ++asked != step;
        });
        EXPECT_EQ(trouble.empty(), Everything() != before_) << step;
        RemoveInstallation({});
        EXPECT_EQ(Everything(), before_);
    }
    // A list edited into nonsense removes nothing outside what was placed.
    fs::create_directories(root_ / "opt/quillon/lectora");
    root_.Write("opt/quillon/lectora/install.list", "/usr/../usr/bin/other\nusr/bin/other\n\n/\n");
    EXPECT_EQ(RemoveInstallation({.machineSettings = true}), "");
    EXPECT_TRUE(root_.Has("usr/bin/other"));
}

TEST_F(Installation, TakesFromTheUsersWhatItPutThereAndTheirOwnDataOnlyWhenAsked) {
    for (const char* folder : {"etc", "home/ada/Desktop", "home/bea/Bureau", "home/bea/.config",
                               "home/bea/.quillon/other", "home/eve/.quillon/lectora/Logs",
                               "home/bea/.quillon/lectora", "elsewhere/lectora", "home/mal"})
        fs::create_directories(root_ / folder);
    const Accounts accounts(root_, {"ada", "bea", "eve", "mal", "gone"}, "none:x:6:6:::\n");
    root_.Write("home/bea/.config/user-dirs.dirs",
                "# XDG_DESKTOP_DIR=\"$HOME/no\"\nXDG_DESKTOP_DIR=\"$HOME/Bureau/\"\n");
    const std::string entry = "[Desktop Entry]\nExec=lectora %F\n";
    tree_.Write("usr/share/applications/lectora.desktop", entry);
    // A user's links lead root nowhere.
    root_.Write("elsewhere/lectora/precious", "p");
    fs::create_symlink(root_ / "elsewhere", root_ / "home/mal/.quillon");
    fs::create_symlink(root_ / "elsewhere", root_ / "home/eve/.quillon/lectora/link");
    root_.Write("home/ada/speech.wav", "RIFF");
    root_.Write("home/eve/.quillon/lectora/Logs/day", "log");
    root_.Write("home/bea/.quillon/lectora/settings", "installed=1");
    accounts.OwnTheirHomes();
    const auto before = Everything();
    EXPECT_EQ(InstallTree(tree_.Path()), "");
    for (const char* home : {"home/ada", "home/bea", "home/eve"}) {
        const ScopedVariable variable("HOME", (root_ / home).c_str());
        CreateDesktopShortcut();
        CreateDesktopShortcut();
    }
    EXPECT_EQ(root_.Read("home/bea/Bureau/lectora.desktop"), entry);
    const fs::perms mode = fs::status(root_ / "home/ada/Desktop/lectora.desktop").permissions();
    EXPECT_EQ(mode & fs::perms::owner_all, fs::perms::owner_all) << "desktops start nothing else";
    EXPECT_FALSE(root_.Has("home/eve/Desktop"));
    EXPECT_EQ(RemoveInstallation({}), "");
    EXPECT_EQ(Everything(), before);

    EXPECT_EQ(InstallTree(tree_.Path()), "");
    root_.Write("home/ada/Desktop/lectora.desktop", "[Desktop Entry]\nExec=their own\n");
    const ScopedVariable home("HOME", (root_ / "home/ada").c_str());
    EXPECT_EQ(RemoveInstallation({.usersData = true}), "");
    EXPECT_TRUE(root_.Has("home/ada/Desktop/lectora.desktop"));
    EXPECT_TRUE(root_.Has("elsewhere/lectora/precious"));
    EXPECT_TRUE(root_.Has("home/bea/.quillon/other"));
    for (const char* gone :
         {"home/ada/speech.wav", "home/bea/.quillon/lectora", "home/eve/.quillon"})
        EXPECT_FALSE(root_.Has(gone)) << gone;
}

TEST_F(Installation, RefreshesTheDatabasesThatTheMachineKeepsAndBeginsNone) {
    fs::create_directories(root_ / "bin");
    for (const char* program : {"update-desktop-database", "gtk-update-icon-cache"})
        root_.WriteProgram(
            std::string("bin/") + program,
            "for word; do last=$word; done; echo \"${0##*/} $last\" >>" + (root_ / "said"));
    const ScopedVariable path("PATH", (root_ / "bin:" + std::getenv("PATH")).c_str());
    EXPECT_EQ(InstallTree(tree_.Path()), "");
    EXPECT_FALSE(root_.Has("said"));
    root_.Write("usr/share/applications/mimeinfo.cache", "[MIME Cache]\n");
    EXPECT_EQ(RemoveInstallation({}), "");
    EXPECT_EQ(root_.Read("said"),
              "update-desktop-database " + (root_ / "usr/share/applications") + "\n");
}

TEST(RootPrompt, AsksThroughTheDesktopsOwnProgramAndPkexecLast) {
    const ScratchFolder folder;
    fs::create_directories(folder / "bin");
    const ScopedVariable path("PATH", (folder / "bin").c_str());
    const ScopedVariable display("DISPLAY", ":7");
    const std::string program = folder.WriteProgram(
        "it's a \"$program\"", "echo \"${DISPLAY-none} $1\" >>" + (folder / "said"));
    const std::pair<const char*, const char*> programs[] = {{"pkexec", "unset DISPLAY; \"$@\""},
                                                            {"gksu", "/bin/sh -c \"$1\""},
                                                            {"kdesu", "/bin/sh -c \"$2\""}};
    fs::create_symlink("/usr/bin/env", folder / "bin/env");
    const ScopedVariable kde("KDE_FULL_SESSION", nullptr);
    EXPECT_EQ(RootPromptCommand({program}), "") << "nobody can ask";
    for (const auto& [name, script] : programs) {
        const std::string note = "echo ${0##*/} >>" + (folder / "said") + "\n";
        folder.WriteProgram(std::string("bin/") + name, note + script);
        EXPECT_EQ(RunShellCommand(RootPromptCommand({program, "a 'word'"}).c_str()), 0);
    }
    const ScopedVariable inKde("KDE_FULL_SESSION", "true");
    EXPECT_EQ(RunShellCommand(RootPromptCommand({program, "kde"}).c_str()), 0);
    EXPECT_EQ(folder.Read("said"),
              "pkexec\nnone a 'word'\ngksu\nnone a 'word'\ngksu\nnone a 'word'\nkdesu\nnone kde\n");
}

TEST(WatchedCommand, TellsItsLastLineAndGoesOnWhenNobodyWatches) {
    const ScratchFolder folder;
    LSilentProgress progress;
    ::signal(SIGCHLD, SIG_IGN);  // as once an engine has been asked for its voices
    LWatchedCommand failing;
    ASSERT_TRUE(failing.Start("read word; echo one; echo \"$word.\" >&2; printf half; exit 3"));
    EXPECT_EQ(Process(progress, failing), kProcessFailed);
    EXPECT_EQ(WhyFailed(failing), ".") << "of both outputs, and its input is empty";
    LWatchedCommand refused;  // as pkexec ends after a wrong password
    ASSERT_TRUE(refused.Start("echo; echo This incident has been reported.; exit 127"));
    EXPECT_EQ(Process(progress, refused), kProcessFailed);
    EXPECT_NE(WhyFailed(refused).find("password"), std::string::npos);
    ::signal(SIGCHLD, SIG_DFL);
    struct Stopped : LSilentProgress {
        LProcessResult ProcessWait(unsigned int) override { return kProcessStopped; }
    };
    const std::string go = folder / "go";
    ASSERT_EQ(::mkfifo(go.c_str(), 0600), 0);
    EXPECT_EQ(
        RunForked([&] {
            Stopped impatient;
            LWatchedCommand watched;
            watched.Start("read word <" + go + "; echo said; echo $word >" + (folder / "end"));
            return Process(impatient, watched) == kProcessStopped ? 0 : 1;
        }),
        0);
    std::ofstream(go) << "word\n";
    while (folder.Read("end") != "word\n")
        ::usleep(1000);
}

TEST(Packages, StandInTheReadMeAsInTheWindow) {
    const std::string readMe = ScratchFolder::ReadFile(LECTORA_SOURCE "/README.md");
    std::string table = "| language | speaker | package |\n|---|---|---|\n";
    for (const LVoicePackage& voice : VoicePackages())
        table += std::string("| ") + voice.language + " | " + voice.speaker + " | `" +
                 voice.package + "` |\n";
    EXPECT_NE(readMe.find(table), std::string::npos) << table;
}

TEST(Packages, AreInstalledByTheServiceElseByThePromptElseByHand) {
    const ScratchFolder programs;
    const ScopedVariable path("PATH", programs.Path().c_str());
    const std::vector<std::string> two{"a", "b"};
    EXPECT_EQ(InstallCommandToRun(two), "");
    programs.WriteProgram("pkexec", "");
    EXPECT_EQ(InstallCommandToRun(two), "") << "no Debian";
    programs.WriteProgram("apt-get", "");
    EXPECT_EQ(InstallCommandToRun(two),
              "pkexec 'env' 'DEBIAN_FRONTEND=noninteractive' 'sh' '-c' 'apt-get -y install a b || "
              "{ apt-get update && apt-get -y install a b; }'");
    programs.WriteProgram("pkcon", "");
    EXPECT_EQ(InstallCommandToRun(two), "pkcon --plain -y install a b");
    EXPECT_EQ(InstallCommandToType(two), "sudo apt install a b");
}

}  // namespace
