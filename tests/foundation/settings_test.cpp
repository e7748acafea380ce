#include "foundation/settings/settings.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <vector>

#include "foundation/files/flock_timed.h"
#include "foundation/files/unique_fd.h"
#include "foundation/settings/setting.h"
#include "foundation/settings/settings_record.h"
#include "tests/support/forked.h"
#include "tests/support/scratch_folder.h"

namespace {

std::string Get(LSettingsFile& file, const std::string& key, const char* fallback = "(none)") {
    char out[260];
    file.GetString(key.c_str(), fallback, out);
    return out;
}

TEST(SettingsFile, ReadsLinesByTheRulesOfTheFormat) {
    const std::string longText(300, 'x');
    const std::tuple<const char*, std::string, std::string, std::string> cases[] = {
        {"hand-written upper case is never found", "Key=1\r\n", "Key", "(none)"},
        {"spaces around the sign belong to key and value", "w = 6\r\n", "W ", " 6"},
        {"all signs are skipped, later ones stay", "k==a=b\r\n", "k", "a=b"},
        {"empty key is dropped", "==x\r\nk=1\r\n", "", "(none)"},
        {"no sign", "k\r\nl=1", "k", ""},
        {"LF CR and CR alone", "a=1\n\rb=2\rc=3\n", "c", "3"},
        {"control bytes before a key", std::string("a=1\n\0\0\t b=2\n", 12), "b", "2"},
        {"long value is cut", "k=" + longText, "k", longText.substr(0, 259)},
        {"long key is cut", longText + "=1\n", longText, "1"},
        {"10 MB on one line", "a=1\nbig=" + std::string(10 << 20, 'y') + "\nc=3", "c", "3"}};
    const ScratchFolder folder;
    for (const auto& [about, content, key, value] : cases) {
        folder.Write("section", content);
        LSettingsFile file((folder / "section").c_str());
        EXPECT_EQ(Get(file, key), value) << about;
    }
}

TEST(SettingsFile, WritesInFileOrderAndOnlyWhatChanged) {
    const ScratchFolder folder;
    folder.Write("s", "Key=1\nold=5\ntwice=1\ntwice=2");
    LSettingsFile file((folder / "s").c_str());
    EXPECT_TRUE(file.TestFieldExists("KEY"));
    file.SetString("Key", "2");
    EXPECT_EQ(folder.Read("s"), "Key=1\r\nold=5\r\ntwice=1\r\nkey=2\r\n");
    file.SetString("TWICE", nullptr);
    EXPECT_EQ(Get(file, "twice"), "(none)") << "what it shadowed stays away";
    file.SetString("new", (std::string(258, 'v') + "abc").c_str());
    file.SetString("broken", "first\nsecond");
    EXPECT_EQ(folder.Read("s"),
              "Key=1\r\nold=5\r\nkey=2\r\nnew=" + std::string(258, 'v') + "a\r\nbroken=first\r\n");
    // A key is what a reader takes for it, whatever is asked for.
    LSettingsFile odd((folder / "odd").c_str());
    for (const char* key : {"x\ny", "p=q", "p=r", "\tk", ""})
        odd.SetString(key, "1");
    EXPECT_EQ(folder.Read("odd"), "x=1\r\np=1\r\nk=1\r\n");
    EXPECT_TRUE(odd.TestFieldExists("p=") && !odd.TestFieldExists(""));
    const auto before = std::filesystem::last_write_time(folder / "s");
    file.SetString("key", "2");
    file.SetString("absent", nullptr);
    EXPECT_EQ(std::filesystem::last_write_time(folder / "s"), before);
    // Same second, same size: the stamps cannot tell, but a write must not bring back the old.
    LSettingsFile((folder / "s").c_str()).SetString("key", "3");
    file.SetString("old", "6");
    EXPECT_TRUE(folder.Read("s").starts_with("Key=1\r\nold=6\r\nkey=3\r\n"));
}

TEST(SettingsFile, WhatCannotBeReadIsEmptyAndWhatCannotBeWrittenStays) {
    const ScratchFolder folder;
    mkfifo((folder / "fifo").c_str(), 0666);
    folder.Write("secret", "k=v\r\n");
    folder.Write("readable", "k=v\r\n");
    const int result = RunForked([&] {
        chmod((folder / "readable").c_str(), 0444);
        chmod((folder / "secret").c_str(), 0);
        chmod(folder.Path().c_str(), 0555);
        if (getuid() == 0 && setuid(65534) != 0)
            return 77;
        int wrong = 0;
        for (const char* name : {"", "fifo", "no/such", "secret", "missing", "readable"}) {
            LSettingsFile file((folder / name).c_str());
            file.SetString("k", "new");
            const bool isReadable = name == std::string("readable");
            wrong += Get(file, "k", std::string(300, 'd').c_str()) !=
                     (isReadable ? "v" : std::string(259, 'd'));
        }
        return wrong;
    });
    chmod(folder.Path().c_str(), 0777);
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(folder.Read("readable") == "k=v\r\n" && !folder.Has("missing"));
}

TEST(Settings, ReachOneFileWhateverTheCaseAndDeleteOnlyWhereTheyHaveBeen) {
    const ScratchFolder folder;
    folder.Write("mainwindow", "width=640\r\n");
    LSettingsSectionList list(folder.Path().c_str());
    list.DeleteItem("MainWindow", "width");
    EXPECT_EQ(folder.Read("mainwindow"), "width=640\r\n");
    char out[260];
    list.GetString("MAINWINDOW", "Width", "", out);
    EXPECT_STREQ(out, "640");
    list.SetString("MainWindow", "Height", "480");
    list.DeleteItem("mainWINDOW", "Width");
    EXPECT_EQ(folder.Read("mainwindow"), "height=480\r\n");
    folder.Write("mainwindow", "height=1\r\nnew=2\r\n");
    list.GetString("MainWindow", "new", "", out);
    EXPECT_STREQ(out, "2") << "foreign edits are seen at the next read";

    constexpr UserSetting<int> kNumber{"TypedSettings", "Number", -7};
    constexpr UserSetting<bool> kFlag{"TypedSettings", "Flag", true};
    constexpr MachineSetting<const char*> kText{"TypedSettings", "Text", "default"};
    kNumber.Set(12);
    kFlag.Set(false);
    kText.Set("");
    EXPECT_TRUE(kNumber.Get() == 12 && !kFlag.Get() && kText.Get().empty());
    kNumber.Delete();
    kFlag.Delete();
    kText.Delete();
    EXPECT_TRUE(kNumber.Get() == -7 && kFlag.Get() && kText.Get() == "default");
}

TEST(SettingsRecord, ConvertsValuesAndKeepsSubRecordsInAFolderOfItsName) {
    const ScratchFolder folder;
    folder.Write("r",
                 "junk=abc\nlead=12x\nempty=\nzero=0off\nword=no\nhuge=99999999999999999999\n");
    LSettingsRecord record((folder / "r").c_str());
    const std::pair<const char*, int> numbers[] = {
        {"junk", 0}, {"lead", 12}, {"empty", 5}, {"absent", 5}, {"huge", INT_MAX}};
    for (const auto& [key, number] : numbers)
        EXPECT_EQ(record.GetInt(key, 5), number) << key;
    EXPECT_FALSE(record.GetBool("zero", true));
    EXPECT_TRUE(record.GetBool("word", false));
    EXPECT_TRUE(record.GetBool("empty", true));
    record.SetBool("word", false);
    record.SetInt("lead", -3);
    EXPECT_TRUE(folder.Read("r").find("lead=-3\r\nempty=\r\nzero=0off\r\nword=0\r\n") !=
                std::string::npos);

    LSettingsRecord sub;
    LSettingsRecord deep;
    record.OpenSubRecord("One", sub);
    EXPECT_TRUE(folder.Has("r_") && !record.TestSubRecordExists("One"));
    EXPECT_TRUE(record.CreateSubRecord("One", sub));
    EXPECT_FALSE(record.CreateSubRecord("ONE", sub));
    sub.SetString("k", "v");
    EXPECT_EQ(folder.Read("r_/one"), "k=v\r\n");
    EXPECT_TRUE(sub.CreateSubRecord("deep", deep));
    record.DeleteSubRecord("One");
    EXPECT_TRUE(folder.Has("r_/one_/deep") && !record.TestSubRecordExists("One"));
    sub.DeleteSubRecord("deep");
    record.DeleteSubRecord("One");
    EXPECT_FALSE(folder.Has("r_/one_")) << "an empty folder goes with its record";
}

double Milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

TEST(FileLocks, WaitTheirTimeAndThenGoOn) {
    const ScratchFolder folder;
    folder.Write("s", "k=v\r\n");
    const UniqueFd file(open((folder / "s").c_str(), O_RDWR));
    const UniqueFd holder(open((folder / "s").c_str(), O_RDWR));
    flock(holder.Get(), LOCK_EX);
    LSettingsFile settings((folder / "s").c_str());
    const auto flockTimed = [&] { EXPECT_FALSE(flocktimed(file.Get(), LOCK_SH | LOCK_NB, 320)); };
    EXPECT_GE(Milliseconds(flockTimed), 341) << "11 times 1 + 2 + 4 + 8 + 16 ms";
    EXPECT_GE(Milliseconds([&] { EXPECT_EQ(Get(settings, "k"), "v"); }), 1950);
}

TEST(FileLocks, ReadersThatFollowEachOtherDoNotStarveAWriter) {
    const ScratchFolder folder;
    LSettingsFile file((folder / "s").c_str());
    file.SetString("k", "0");
    pid_t readers[3];
    for (pid_t& reader : readers) {
        reader = StartForked([&] {
            for (LSettingsFile own((folder / "s").c_str());;)
                Get(own, "k");
            return 0;
        });
    }
    usleep(100000);
    std::vector<double> waits;
    for (int set = 1; set <= 20; ++set)
        waits.push_back(Milliseconds([&] { file.SetString("k", std::to_string(set).c_str()); }));
    for (const pid_t reader : readers) {
        kill(reader, SIGKILL);
        WaitForked(reader);
    }
    std::sort(waits.begin(), waits.end());
    EXPECT_LT(waits[10], 100) << "half of them, however busy the machine is";
    EXPECT_LT(waits.back(), 2000) << "and none runs into the limit";
}

}  // namespace
