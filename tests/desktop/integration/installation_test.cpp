#include "desktop/installation.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <map>

#include "foundation/lock_file.h"
#include "tests/support/forked.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;

// A tree to install and a machine to install it on.
class Installation : public ::testing::Test {
protected:
    Installation() : rootVariable_("LECTORA_ROOT", root_.Path().c_str()) {
        for (const char* folder : {"opt/quillon/lectora/bin", "opt/quillon/lectora/share/help",
                                   "usr/bin", "usr/share/applications/desktop"})
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
        EXPECT_EQ(fs::status(root_ / kProgram).permissions(), fs::perms(0755));
        EXPECT_EQ(fs::status(root_ / "opt/quillon/lectora/etc").permissions(), fs::perms(0777));
    }

    static constexpr const char* kProgram = "opt/quillon/lectora/bin/lectora";
    ScratchFolder tree_;
    ScratchFolder root_;
    ScopedVariable rootVariable_;
    std::map<std::string, std::string> before_;
};

TEST_F(Installation, LeavesNothingBehindHoweverOftenItWasDone) {
    EXPECT_NE(RemoveInstallation(false), "") << "nothing is installed yet";
    EXPECT_EQ(InstallTree(tree_.Path()), "");
    ExpectInstalled();
    const auto once = Everything();
    EXPECT_EQ(InstallTree(tree_.Path()), "");
    EXPECT_EQ(Everything(), once);
    // A new version: a changed file, a new one, and one that is no longer part of it.
    tree_.WriteProgram(kProgram, "echo 2");
    tree_.Write("usr/share/applications/new", "new");
    fs::remove(tree_ / "opt/quillon/lectora/share/help/index.html");
    EXPECT_EQ(InstallTree(tree_.Path()), "");
    ExpectInstalled();
    EXPECT_FALSE(root_.Has("opt/quillon/lectora/share/help/index.html"));
    EXPECT_EQ(RemoveInstallation(false), "");
    EXPECT_EQ(Everything(), before_);

    EXPECT_EQ(InstallTree(tree_.Path()), "");
    root_.Write("opt/quillon/lectora/etc/hotkey", "key=1");
    root_.Write("usr/share/applications/theirs", "x");
    EXPECT_EQ(RemoveInstallation(false), "");
    EXPECT_TRUE(root_.Has("opt/quillon/lectora/etc/hotkey")) << "settings stay unless asked for";
    EXPECT_TRUE(root_.Has("usr/share/applications/theirs"));
    EXPECT_FALSE(root_.Has("usr/share/applications/desktop"));
    EXPECT_EQ(InstallTree(tree_.Path()), "");
    EXPECT_EQ(RemoveInstallation(true), "");
    EXPECT_FALSE(root_.Has("opt/quillon"));
}

TEST_F(Installation, ChangesNothingWhenItCannotBeDoneWhole) {
    EXPECT_NE(InstallTree(tree_ / "missing"), "");
    root_.Write("usr/bin/lectora", "somebody's own");
    EXPECT_NE(InstallTree(tree_.Path()).find("has not placed it"), std::string::npos);
    EXPECT_EQ(root_.Read("usr/bin/lectora"), "somebody's own");
    fs::remove(root_ / "usr/bin/lectora");
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
            if (!hasOlder) {
                rmdir((root_ / "opt/quillon/lectora").c_str());
                rmdir((root_ / "opt/quillon").c_str());
            }
            EXPECT_EQ(Everything(), untouched) << full;
        }
    }
    // A list edited into nonsense removes nothing outside what was placed.
    root_.Write("opt/quillon/lectora/install.list", "/usr/../usr/bin/other\nusr/bin/other\n\n/\n");
    EXPECT_EQ(RemoveInstallation(true), "");
    EXPECT_TRUE(root_.Has("usr/bin/other"));
}

}  // namespace
