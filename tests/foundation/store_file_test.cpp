// What the stores take for theirs, whatever others have put there.

#include "foundation/files/store_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/settings/settings_file.h"
#include "tests/support/forked.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;

constexpr uid_t kOther = 61000;

class StoreFile : public ::testing::Test {
protected:
    StoreFile() {
        ::chmod(root_.Path().c_str(), 0755);
        fs::create_directories(root_ / "home");
        fs::create_directories(root_ / "elsewhere");
        root_.Write("elsewhere/precious", "p=1\r\n");
    }
    static std::string Get(const std::string& path) {
        char out[260];
        LSettingsFile(path.c_str()).GetString("k", "(none)", out);
        return out;
    }
    static void Set(const std::string& path) { LSettingsFile(path.c_str()).SetString("k", "v"); }

    ScratchFolder root_;
    ScopedVariable rootVariable_{"LECTORA_ROOT", root_.Path().c_str()};
    ScopedVariable homeVariable_{"HOME", (root_ / "home").c_str()};
    const std::string users_ = root_ / "home/.quillon/lectora/section";
    const std::string machines_ = root_ / "opt/quillon/lectora/etc/section";
};

TEST_F(StoreFile, IsMadeWithItsFoldersByTheFirstWriteAndByNoRead) {
    for (const std::string& path : {users_, machines_}) {
        EXPECT_EQ(Get(path), "(none)");
        LSettingsFile(path.c_str()).SetString("k", nullptr);
        EXPECT_FALSE(root_.Has("home/.quillon") || root_.Has("opt/quillon/lectora/etc"));
        Set(path);
        EXPECT_EQ(Get(path), "v");
        fs::remove_all(root_ / "home/.quillon");
    }
    fs::remove_all(root_ / "home");
    Set(users_);
    EXPECT_FALSE(root_.Has("home")) << "a home folder is somebody else's to make";
}

TEST_F(StoreFile, IsReachedThroughNoLink) {
    for (const std::string& path : {users_, machines_}) {
        Set(path);
        // Each step in its turn: the file itself, then each folder on the way.
        for (std::string step = path; step.ends_with("section") || step.find("uillon") < step.npos;
             step = fs::path(step).parent_path()) {
            fs::rename(step, root_ / "moved");
            fs::create_symlink(root_ / "moved", step);
            EXPECT_EQ(Get(path), "(none)") << step;
            Set(path);
            fs::remove(step);
            fs::create_symlink(root_ / "elsewhere/precious", step);
            Set(path);
            EXPECT_FALSE(MakeStoreFolder(path)) << step;
            fs::remove(step);
            fs::rename(root_ / "moved", step);
        }
        EXPECT_EQ(root_.Read("elsewhere/precious"), "p=1\r\n");
        EXPECT_EQ(Get(path), "v");
    }
}

TEST_F(StoreFile, OfAnotherUserIsAsGoodAsMissing) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root may make files of another user's";
    for (const std::string& path : {users_, machines_}) {
        Set(path);
        ASSERT_EQ(RunForked([&] {
                      // Root's is read, and one's own; a third one's is not.
                      const bool isReadByAll = ::setuid(kOther) == 0 && Get(path) == "v";
                      return isReadByAll ? 0 : 1;
                  }),
                  0);
        EXPECT_EQ(::chown(path.c_str(), kOther, kOther), 0);
        EXPECT_EQ(RunForked([&] { return ::setuid(kOther) == 0 && Get(path) == "v" ? 0 : 1; }), 0);
        EXPECT_EQ(RunForked([&] { return ::setuid(kOther + 1) == 0 && Get(path) == "v" ? 1 : 0; }),
                  0);
        EXPECT_EQ(Get(path), "(none)") << "not even for root";
        EXPECT_EQ(::chown(path.c_str(), 0, 0), 0);
        const std::string folder = fs::path(path).parent_path();
        EXPECT_EQ(::chown(folder.c_str(), kOther, kOther), 0);
        EXPECT_EQ(Get(path), "(none)") << "nor a folder where another could exchange it";
    }
}

TEST_F(StoreFile, CountsForTheAdministratorsOnlyWhereNobodyElseCouldHaveWritten) {
    EXPECT_FALSE(CouldOnlyRootWrite(machines_)) << "it is not there";
    Set(machines_);
    Set(users_);
    EXPECT_TRUE(CouldOnlyRootWrite(machines_));
    EXPECT_FALSE(CouldOnlyRootWrite(users_));
    for (const std::string& part : {machines_, root_ / "opt/quillon/lectora/etc", root_ / "opt"}) {
        const fs::perms before = fs::status(part).permissions();
        fs::permissions(part, before | fs::perms::others_write);
        EXPECT_FALSE(CouldOnlyRootWrite(machines_)) << part;
        fs::permissions(part, before);
        if (::geteuid() == 0) {
            EXPECT_EQ(::chown(part.c_str(), kOther, 0), 0);
            EXPECT_FALSE(CouldOnlyRootWrite(machines_)) << part;
            EXPECT_EQ(::chown(part.c_str(), 0, 0), 0);
        }
    }
    fs::rename(machines_, machines_ + "2");
    fs::create_symlink(machines_ + "2", machines_);
    EXPECT_FALSE(CouldOnlyRootWrite(machines_));
}

}  // namespace
