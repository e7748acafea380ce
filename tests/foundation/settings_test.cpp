#include "foundation/settings.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <chrono>
#include <thread>
#include <vector>

#include "foundation/flock_timed.h"
#include "foundation/settings_record.h"
#include "foundation/unique_fd.h"
#include "tests/foundation/forked.h"
#include "tests/foundation/scratch_folder.h"

namespace {

std::string Get(LSettingsFile& file, const char* key, const char* defaultValue = "(none)") {
    char out[260];
    file.GetString(key, defaultValue, out);
    return out;
}

std::string Get(LSettingsSectionList& list, const char* section, const char* key) {
    char out[260];
    list.GetString(section, key, "(none)", out);
    return out;
}

std::int64_t NanosecondsOf(const std::string& path) {
    struct stat status {};
    stat(path.c_str(), &status);
    return std::int64_t{status.st_mtim.tv_sec} * 1000000000 + status.st_mtim.tv_nsec;
}

TEST(SettingsFile, ReadsLinesByTheRulesOfTheFormat) {
    const std::string longText(300, 'x');
    const struct {
        const char* about;
        std::string content;
        const char* key;
        std::string value;
    } cases[] = {
        {"plain", "a=1\r\nb=2\r\n", "b", "2"},
        {"key asked in upper case", "width=640\r\n", "Width", "640"},
        {"hand-written upper case is never found", "Key=1\r\n", "Key", "(none)"},
        {"spaces around the sign belong to key and value", "Width = 640\r\n", "Width", "(none)"},
        {"trailing space of the key", "w = 6\r\n", "w ", " 6"},
        {"all signs are skipped", "k==x\r\n", "k", "x"},
        {"later signs stay", "a=b=c\r\n", "a", "b=c"},
        {"empty key is dropped", "==x\r\nk=1\r\n", "", "(none)"},
        {"no sign", "k\r\nl=1", "k", ""},
        {"first duplicate wins", "k=1\nk=2\n", "k", "1"},
        {"LF CR and CR alone", "a=1\n\rb=2\rc=3\n", "c", "3"},
        {"control bytes and spaces before a key", "\n\t \x01k=1", "k", "1"},
        {"NUL bytes before a line", std::string("a=1\n\0\0b=2\n", 10), "b", "2"},
        {"invalid UTF-8", "k=\xff\xc3(\r\n", "k", "\xff\xc3("},
        {"long value is cut", "k=" + longText, "k", longText.substr(0, 259)},
        {"long key is cut", longText + "=1\n", longText.c_str(), "1"},
        {"10 MB on one line", "a=1\nbig=" + std::string(10 << 20, 'y') + "\nc=3", "c", "3"},
    };
    const ScratchFolder folder;
    for (const auto& test : cases) {
        SCOPED_TRACE(test.about);
        folder.Write("section", test.content);
        LSettingsFile file((folder / "section").c_str());
        EXPECT_EQ(Get(file, test.key), test.value);
    }
}

TEST(SettingsFile, WritesInFileOrderAndOnlyWhatChanged) {
    const ScratchFolder folder;
    folder.Write("s", "Key=1\nold=5");
    LSettingsFile file((folder / "s").c_str());
    EXPECT_TRUE(file.TestFieldExists("KEY"));
    file.SetString("Key", "2");
    EXPECT_EQ(folder.Read("s"), "Key=1\r\nold=5\r\nkey=2\r\n");
    file.SetString("OLD", nullptr);
    file.SetString("new", (std::string(258, 'v') + "abc").c_str());
    file.SetString("broken", "first\nsecond");
    EXPECT_EQ(folder.Read("s"),
              "Key=1\r\nkey=2\r\nnew=" + std::string(258, 'v') + "a\r\nbroken=first\r\n");

    // A key is what a reader takes for it, whatever is asked for.
    const struct {
        const char* key;
        const char* line;
        int times;
    } keys[] = {{"x\ny", "x=1\r\n", 1}, {"p=q", "p=1\r\n", 3}, {"\tk", "k=1\r\n", 1}, {"", "", 1}};
    for (const auto& [key, line, times] : keys) {
        SCOPED_TRACE(key);
        LSettingsFile odd((folder / "odd").c_str());
        for (int time = 0; time < times; ++time)
            odd.SetString(key, "1");
        EXPECT_EQ(folder.Read("odd"), line);
        EXPECT_EQ(odd.TestFieldExists(key), *line != '\0');
        EXPECT_EQ(Get(odd, key), *line ? "1" : "(none)");
        odd.SetString(key, nullptr);
        EXPECT_EQ(folder.Read("odd"), "");
    }

    const std::int64_t before = NanosecondsOf(folder / "s");
    file.SetString("key", "2");
    file.SetString("absent", nullptr);
    EXPECT_EQ(NanosecondsOf(folder / "s"), before);

    // What an empty or missing file leaves: the default, cut.
    LSettingsFile missing((folder / "none").c_str());
    EXPECT_EQ(Get(missing, "k", std::string(300, 'd').c_str()), std::string(259, 'd'));
    EXPECT_FALSE(folder.Has("none"));
    missing.SetString("k", nullptr);
    EXPECT_TRUE(folder.Has("none"));
}

// Same second, same size: the stamps cannot tell, but a write must not bring back the old value.
TEST(SettingsFile, DoesNotUndoWhatAnotherProcessWroteInTheSameSecond) {
    const ScratchFolder folder;
    const std::string path = folder / "s";
    LSettingsFile file(path.c_str());
    file.SetString("mine", "1");
    file.SetString("theirs", "1");
    ASSERT_EQ(RunForked([&] {
                  LSettingsFile other(path.c_str());
                  other.SetString("theirs", "2");
                  return 0;
              }),
              0);
    file.SetString("mine", "2");
    EXPECT_EQ(folder.Read("s"), "mine=2\r\ntheirs=2\r\n");
}

TEST(SettingsFile, TreatsWhatIsNoReadableFileAsEmpty) {
    const ScratchFolder folder;
    mkdir((folder / "folder").c_str(), 0777);
    mkfifo((folder / "fifo").c_str(), 0666);
    ASSERT_EQ(symlink((folder / "nowhere/x").c_str(), (folder / "dangling").c_str()), 0);
    for (const char* name : {"folder", "fifo", "dangling", "no/such/folder"}) {
        SCOPED_TRACE(name);
        LSettingsFile file((folder / name).c_str());
        file.SetString("k", "v");
        EXPECT_EQ(Get(file, "k"), "(none)");
        EXPECT_FALSE(file.TestFieldExists("k"));
    }
}

TEST(SettingsFile, LosesWritesSilentlyWhereItMayNotWrite) {
    const ScratchFolder folder;
    folder.Write("readable", "k=v\r\n");
    folder.Write("secret", "k=v\r\n");
    EXPECT_EQ(RunForked([&] {
                  chmod((folder / "readable").c_str(), 0444);
                  chmod((folder / "secret").c_str(), 0);
                  chmod(folder.Path().c_str(), 0555);
                  if (getuid() == 0 && setuid(65534) != 0)
                      return 77;
                  LSettingsFile readable((folder / "readable").c_str());
                  readable.SetString("k", "new");
                  LSettingsFile secret((folder / "secret").c_str());
                  secret.SetString("k", "new");
                  LSettingsFile missing((folder / "missing").c_str());
                  missing.SetString("k", "new");
                  return Get(readable, "k") != "v"       ? 1
                         : Get(secret, "k") != "(none)"  ? 2
                         : Get(missing, "k") != "(none)" ? 3
                                                         : 0;
              }),
              0);
    chmod(folder.Path().c_str(), 0777);
    EXPECT_EQ(folder.Read("readable"), "k=v\r\n");
    EXPECT_FALSE(folder.Has("missing"));
}

TEST(SettingsSectionList, ServesManyThreadsAtOnce) {
    constexpr int kThreads = 4;
    constexpr int kKeys = 100;
    const ScratchFolder folder;
    LSettingsSectionList list(folder.Path().c_str());
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&list, thread] {
            for (int i = 0; i < kKeys; ++i)
                list.SetString(i % 2 ? "odd" : "EVEN",
                               std::to_string(i * kThreads + thread).c_str(), "v");
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int i = 0; i < kKeys * kThreads; ++i)
        EXPECT_EQ(Get(list, i / kThreads % 2 ? "Odd" : "even", std::to_string(i).c_str()), "v");
}

TEST(SettingsSectionList, ReachesOneFileWhateverTheCaseAndDeletesOnlyWhereItHasBeen) {
    const ScratchFolder folder;
    folder.Write("mainwindow", "width=640\r\n");
    LSettingsSectionList list(folder.Path().c_str());
    list.DeleteItem("MainWindow", "width");
    EXPECT_EQ(folder.Read("mainwindow"), "width=640\r\n");
    EXPECT_EQ(Get(list, "MAINWINDOW", "Width"), "640");
    list.SetString("MainWindow", "Height", "480");
    EXPECT_EQ(folder.Read("mainwindow"), "width=640\r\nheight=480\r\n");
    list.DeleteItem("mainWINDOW", "Width");
    EXPECT_EQ(folder.Read("mainwindow"), "height=480\r\n");
    // Foreign edits are seen at the next read.
    folder.Write("mainwindow", "height=1\r\nnew=2\r\n");
    EXPECT_EQ(Get(list, "MainWindow", "new"), "2");
}

TEST(Settings, StandWhereTheyBelongAndAreCreated) {
    const ScratchFolder folder;
    const ScopedVariable root("LECTORA_ROOT", folder.Path().c_str());
    char path[260];
    {
        const ScopedVariable home("HOME", (folder / "").c_str());
        LSettingsGetUserFolder(path);
        EXPECT_EQ(std::string(path), folder.Path() + "/.quillon/lectora");
        EXPECT_TRUE(folder.Has(".quillon/lectora"));
    }
    const ScopedVariable home("HOME", nullptr);
    LSettingsGetSharedFolder(path);
    EXPECT_EQ(std::string(path), folder.Path() + "/opt/quillon/lectora/etc");
    EXPECT_TRUE(folder.Has("opt/quillon/lectora/etc"));
    LSettingsGetUserFolder(path);
    EXPECT_EQ(std::string(path), folder.Path() + "/opt/.quillon/lectora");

    LSettingsRecord details("Hotkey", "Details");
    details.SetInt("MaxId", 7);
    EXPECT_EQ(folder.Read("opt/quillon/lectora/etc/hotkey_/details"), "maxid=7\r\n");
}

TEST(SettingsRecord, ConvertsNumbersAndFlags) {
    const ScratchFolder folder;
    folder.Write("r",
                 "junk=abc\nlead=12x\nempty=\nzero=0off\nword=no\nhuge=99999999999999999999\n");
    LSettingsRecord record((folder / "r").c_str());
    EXPECT_EQ(record.GetInt("junk", 5), 0);
    EXPECT_EQ(record.GetInt("lead", 5), 12);
    EXPECT_EQ(record.GetInt("empty", 5), 5);
    EXPECT_EQ(record.GetInt("absent", -5), -5);
    EXPECT_EQ(record.GetInt("huge", 5), INT_MAX);
    EXPECT_FALSE(record.GetBool("zero", true));
    EXPECT_TRUE(record.GetBool("word", false));
    EXPECT_TRUE(record.GetBool("empty", true));
    record.SetBool("word", false);
    EXPECT_FALSE(record.GetBool("word", true));
}

TEST(SettingsRecord, KeepsSubRecordsInAFolderOfItsName) {
    const ScratchFolder folder;
    LSettingsRecord record((folder / "hotkey").c_str());
    LSettingsRecord sub;
    EXPECT_FALSE(record.TestSubRecordExists("One"));
    record.OpenSubRecord("One", sub);
    EXPECT_TRUE(folder.Has("hotkey_"));
    EXPECT_FALSE(folder.Has("hotkey_/one"));
    EXPECT_TRUE(record.CreateSubRecord("One", sub));
    EXPECT_FALSE(record.CreateSubRecord("ONE", sub));
    sub.SetString("k", "v");
    EXPECT_EQ(folder.Read("hotkey_/one"), "k=v\r\n");
    LSettingsRecord deep;
    EXPECT_TRUE(sub.CreateSubRecord("deep", deep));
    record.DeleteSubRecord("One");
    EXPECT_FALSE(record.TestSubRecordExists("One"));
    EXPECT_TRUE(folder.Has("hotkey_/one_/deep"));  // its own sub-records stay
}

void UseBothStores() {
    LUserSettingSetString("MainWindow", "Width", "640");
    LUserSettingSetInt("MainWindow", "Height", 480);
    LUserSettingSetBool("MainWindow", "Flag", false);
    LUserSettingSetBool("MainWindow", "Gone", true);
    EXPECT_TRUE(LUserSettingGetBool("MainWindow", "Gone", false));
    LUserSettingDeleteItem("MainWindow", "Gone");
    EXPECT_EQ(LUserSettingGetInt("MainWindow", "Height", 1), 480);
    EXPECT_EQ(LUserSettingGetInt("MainWindow", "Depth", 1), 1);
    EXPECT_FALSE(LUserSettingGetBool("MainWindow", "Flag", true));
    EXPECT_TRUE(LUserSettingGetBool("MainWindow", "Gone", true));
    LSettingSetString("Install", "Password", "plain");
    LSettingSetString("Install", "Gone", "1");
    LSettingDeleteItem("Install", "Gone");
    char out[260];
    LSettingGetPassword("Install", "Password", "", out);
    EXPECT_STREQ(out, "plain");
    _LSettingGetString("Install", "Gone", "default", out);
    EXPECT_STREQ(out, "default");
}

// The test program starts itself again, so that its stores are built in folders of the test's own.
TEST(SettingsStores, AreBuiltBeforeMainInTheFoldersOfUserAndMachine) {
    constexpr char kInChild[] = "LECTORA_TEST_STORES_CHILD";
    if (std::getenv(kInChild)) {
        UseBothStores();
        return;
    }
    const ScratchFolder folder;
    mkdir((folder / "home").c_str(), 0777);
    const ScopedVariable root("LECTORA_ROOT", folder.Path().c_str());
    const ScopedVariable home("HOME", (folder / "home").c_str());
    const ScopedVariable inChild(kInChild, "1");
    EXPECT_EQ(RunForked([] {
                  execl("/proc/self/exe", "tests", "--gtest_filter=SettingsStores.*",
                        "--gtest_brief=1", nullptr);
                  return 99;
              }),
              0);
    EXPECT_EQ(folder.Read("home/.quillon/lectora/mainwindow"),
              "width=640\r\nheight=480\r\nflag=0\r\n");
    EXPECT_EQ(folder.Read("opt/quillon/lectora/etc/install"), "password=plain\r\n");
}

// Milliseconds until the call returned, with the file locked by somebody else all the time.
template <typename Call>
double MeasureLocked(const std::string& path, Call call) {
    const UniqueFd holder(open(path.c_str(), O_RDWR | O_CREAT, 0666));
    flock(holder.Get(), LOCK_EX);
    const auto start = std::chrono::steady_clock::now();
    if constexpr (std::is_invocable_v<Call, const UniqueFd&>)
        call(holder);
    else
        call();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

TEST(FlockTimed, WaitsByItsScheduleAndThenGoesOn) {
    const ScratchFolder folder;
    const std::string path = folder / "s";
    folder.Write("s", "k=v\r\n");
    const UniqueFd file(open(path.c_str(), O_RDWR));
    const struct {
        int timeout;
        double expected;  // the first pause times 1 + 2 + 4 + ...
    } cases[] = {{0, 1}, {100, 124}, {320, 341}, {1000, 992}};
    for (const auto& [timeout, expected] : cases) {
        bool locked = true;
        const double took = MeasureLocked(path, [&, limit = timeout] {
            locked = flocktimed(file.Get(), LOCK_SH | LOCK_NB, limit);
        });
        EXPECT_FALSE(locked);
        EXPECT_GE(took, expected - 3) << timeout;
        EXPECT_LE(took, expected * 1.4 + 60) << timeout;
    }
    EXPECT_FALSE(flocktimed(-1, LOCK_SH | LOCK_NB, 1000));  // at once

    LSettingsFile settings(path.c_str());
    std::string value;
    const double took = MeasureLocked(path, [&] { value = Get(settings, "k"); });
    EXPECT_GE(took, 1950);
    EXPECT_LE(took, 2300);
    EXPECT_EQ(value, "v");

    // A lock that becomes free is taken at the next try, not before and not at the one after it.
    const std::pair<unsigned, double> frees[] = {{150, 189}, {400, 441}, {900, 945}};
    for (const auto& [freeAt, triedAt] : frees) {
        SCOPED_TRACE(freeAt);
        std::thread release;
        const double waited = MeasureLocked(path, [&, after = freeAt](const UniqueFd& holder) {
            release = std::thread([&holder, after] {
                usleep(after * 1000);
                flock(holder.Get(), LOCK_UN);
            });
            EXPECT_TRUE(flocktimed(file.Get(), LOCK_EX | LOCK_NB, 2000));
            release.join();
        });
        EXPECT_GE(waited, triedAt - 3);
        EXPECT_LE(waited, triedAt * 1.4 + 40);
        flock(file.Get(), LOCK_UN);
    }

    // The limit holds for queueing behind another waiter and for the lock together.
    const double both = MeasureLocked(path, [&] {
        std::thread first([&] {
            const UniqueFd own(open(path.c_str(), O_RDWR));
            EXPECT_FALSE(LockInTurn(own.Get(), LOCK_EX | LOCK_NB, 300));
        });
        usleep(50000);
        EXPECT_FALSE(LockInTurn(file.Get(), LOCK_EX | LOCK_NB, 500));
        first.join();
    });
    EXPECT_GE(both, 400);
    EXPECT_LE(both, 680);  // two whole limits would take 800
}

}  // namespace
