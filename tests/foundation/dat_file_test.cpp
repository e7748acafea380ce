#include "foundation/dat_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <ctime>

#include "foundation/dat_file_native.h"
#include "foundation/ticks.h"
#include "tests/support/forked.h"
#include "tests/support/scratch_folder.h"

namespace {

std::string Get(const std::string& file, const char* section, const char* key) {
    char out[260];
    LDatFileGetValue(file.c_str(), section, key, "(none)", out);
    return out;
}

TEST(DatFile, ReadsSectionsMergesAndWritesThemBack) {
    const ScratchFolder folder;
    const struct {
        std::string content;
        const char* section;
        const char* key;
        std::string value;
        std::string saved;  // after setting Z/n to 1
    } cases[] = {
        {"lost=1\n[A]\nk=1\n", "a", "K", "1", "[A]\r\nk=1\r\n\r\n"},
        {"[Default]\na=1\n[B]\n[default]\nb=2\nA=3\n", "DEFAULT", "a", "3",
         "[Default]\r\na=3\r\nb=2\r\n\r\n[B]\r\n\r\n"},
        {"[A]x]\n[=\nk=a=b\nno sign\n", "=", "k", "a=b", "[A]\r\n\r\n[=]\r\nk=a=b\r\n\r\n"},
        {"[open\nk=" + std::string(600, 'v') + "\n", "open", "k", std::string(259, 'v'),
         "[open]\r\nk=" + std::string(259, 'v') + "\r\n\r\n"},
        {"[A]\n" + std::string(10 << 20, 'x') + "=1\nk=2", "A", "k", "2", "[A]\r\nk=2\r\n\r\n"},
        {"", "A", "k", "(none)", ""},
    };
    int number = 0;
    for (const auto& test : cases) {
        const std::string name = "f" + std::to_string(number++);
        SCOPED_TRACE(name);
        folder.Write(name, test.content);
        EXPECT_EQ(Get(folder / name, test.section, test.key), test.value);
        LDatFileFlush((folder / name).c_str());
        EXPECT_EQ(folder.Read(name), test.content);  // clean: not written
        LDatFileSetValue((folder / name).c_str(), "Z", "n", "1");
        LDatFileFlush((folder / name).c_str());
        EXPECT_EQ(folder.Read(name), test.saved + "[Z]\r\nn=1\r\n\r\n");
    }
}

TEST(DatFile, DeletesKeysAndSectionsAndKeepsBareHeaders) {
    const ScratchFolder folder;
    const std::string path = folder / "f";
    folder.Write("f", "[A]\na=1\nb=2\n[B]\nc=3\n");
    LDatFile file(path.c_str());
    file.DeleteKey("a", "A");
    file.DeleteSection("b");
    file.DeleteKey("New", "x");
    file.SetString("A", "b", "two\n[C]");
    for (const char* key : {"", "=x", "[D]", "\nb"})
        file.SetString("A", key, "no");
    for (int time = 0; time < 3; ++time)
        file.SetString("P]Q\n", "p=q", "3");
    file.Flush();
    EXPECT_EQ(folder.Read("f"), "[A]\r\nb=two\r\n\r\n[New]\r\n\r\n[P]\r\np=3\r\n\r\n");
    // The cache is what counts until the file leaves it.
    folder.Write("f", "[A]\nb=foreign\n");
    EXPECT_EQ(Get(path, "A", "b"), "two");
}

TEST(DatFile, IsSavedAtExitAndLeavesTheCacheWhenIdleAndSaved) {
    const ScratchFolder folder;
    const std::string path = folder / "f";
    const std::string late = folder / "no/such";
    constexpr std::uint32_t kIdle = LDatFileNativeSystem::kIdleMilliseconds;
    LDatFileNativeSystem cache;
    cache.SetValue(path.c_str(), "A", "k", "v");
    cache.SetValue(late.c_str(), "A", "k", "v");
    const std::uint32_t now = GetTickCount();
    cache.Flush(now + kIdle - 5000);
    EXPECT_EQ(folder.Read("f"), "[A]\r\nk=v\r\n\r\n");
    EXPECT_TRUE(cache.IsCached(path.c_str()));
    cache.SetValue(path.c_str(), "A", "k", "w");
    cache.Flush(now + kIdle + 5000);
    EXPECT_FALSE(cache.IsCached(path.c_str()));
    EXPECT_EQ(folder.Read("f"), "[A]\r\nk=w\r\n\r\n");
    // What could not be saved waits until it can.
    cache.Flush(late.c_str());
    EXPECT_TRUE(cache.IsCached(late.c_str()));
    std::filesystem::create_directory(folder / "no");
    cache.Flush(now + kIdle + 5000);
    EXPECT_EQ(folder.Read("no/such"), "[A]\r\nk=v\r\n\r\n");

    const pid_t child = fork();
    if (child == 0) {
        LDatFileSetValue((folder / "last").c_str(), "A", "k", "v");
        std::exit(0);
    }
    WaitForked(child);
    EXPECT_EQ(folder.Read("last"), "[A]\r\nk=v\r\n\r\n");

    // What was there and could not be read is never written over.
    folder.Write("big", "[A]\nk=1\n");
    ASSERT_EQ(truncate((folder / "big").c_str(), 20 << 20), 0);
    mkfifo((folder / "fifo").c_str(), 0666);
    for (const char* name : {"big", "fifo", "no"}) {
        LDatFile file((folder / name).c_str());
        EXPECT_EQ(file.GetString("A", "k", "def"), "def") << name;
        file.SetString("A", "k", "2");
        EXPECT_EQ(file.GetString("A", "k"), "2") << name;
        file.Flush();
    }
    EXPECT_EQ(std::filesystem::file_size(folder / "big"), 20u << 20);
}

TEST(DatFile, StoresNumbersFlagsAndTimesAsTexts) {
    const ScratchFolder folder;
    const ScopedVariable zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    tzset();
    LDatFile file((folder / "f").c_str());
    const std::pair<const char*, bool> flags[] = {{"t", true}, {"tomato", true}, {"1", false}};
    for (const auto& [text, value] : flags) {
        file.SetString("S", "flag", text);
        EXPECT_EQ(file.GetBool("S", "flag", !value), value) << text;
    }
    EXPECT_TRUE(file.GetBool("S", "absent", true));
    EXPECT_FALSE(file.GetBool("S", "absent", false));
    file.SetLong("S", "n", -7);
    EXPECT_EQ(file.GetLong("S", "n", 1), -7);
    EXPECT_EQ(file.GetLong("S", "absent", 1), 1);

    const LDateTime summer = LDateTime::FromLocal(2008, 7, 5, 14, 3, 9);
    file.SetDateTime("S", "when", summer);
    EXPECT_EQ(file.GetString("S", "when"), "05/07/08-14:03:09");
    EXPECT_EQ(file.GetDateTime("S", "when", LDateTime()), summer);
    file.SetDateTime("S", "when", LDateTime());
    EXPECT_EQ(file.GetString("S", "when", "(default)"), "");
    EXPECT_EQ(file.GetDateTime("S", "when", summer), summer);
    for (const char* junk : {"junk", "99/99/99-99:99:99", "05/07/08", "-1/07/08-00:00:00"}) {
        file.SetString("S", "when", junk);
        EXPECT_TRUE(file.GetDateTime("S", "when", summer).IsZero()) << junk;
    }
    file.SetString("S", "when", "01/02/99-00:00:00");
    EXPECT_EQ(file.GetDateTime("S", "when", summer), LDateTime::FromLocal(1999, 2, 1, 0, 0, 0));

    file.SetDayTime("S", "at", LDayTime(23 * 3600 + 5 * 60 + 1));
    EXPECT_EQ(file.GetString("S", "at"), "23:05:01");
    EXPECT_EQ(file.GetDayTime("S", "at", LDayTime()), LDayTime(23 * 3600 + 5 * 60 + 1));
    EXPECT_EQ(file.GetDayTime("S", "absent", LDayTime(9)), LDayTime(9));
}

// Stand-ins with the members that the store asks of a level and a sound time.
struct TestLevel {
    int decibels = 0;
    int Value() const { return decibels; }
    void SetText(const char* text) { decibels = std::atoi(text); }
};
struct TestTime {
    std::string text;
    void SetText(const char* from) { text = from; }
    void _GetText(char* out) const { out[text.copy(out, 100)] = '\0'; }
};

TEST(DatFile, StoresLevelsSoundTimesAndLists) {
    const ScratchFolder folder;
    LDatFile file((folder / "f").c_str());
    const std::pair<int, const char*> levels[] = {
        {-6, "-6dB"}, {0, "0dB"}, {-126, "-126dB"}, {-127, "--dB"}, {-128, "--dB"}};
    for (const auto& [level, text] : levels) {
        file.SetDB("S", "level", TestLevel{level});
        EXPECT_EQ(file.GetString("S", "level"), text);
    }
    file.SetString("S", "level", "-12dB");
    EXPECT_EQ(file.GetDB("S", "level", TestLevel{}).decibels, -12);
    EXPECT_EQ(file.GetDB("S", "absent", TestLevel{-3}).decibels, -3);
    file.SetSoundTime("S", "time", TestTime{"0:01:02.500"});
    EXPECT_EQ(file.GetString("S", "time"), "0:01:02.500");
    EXPECT_EQ(file.GetSoundTime("S", "time", TestTime{}).text, "0:01:02.500");

    EXPECT_EQ(file.GetListCount("S", "item"), 0);
    EXPECT_EQ(file.AddList("S", "item"), 0);
    EXPECT_EQ(file.AddList("S", "item"), 1);
    EXPECT_EQ(file.GetString("S", "itemcount"), "2");
    file.SetString("S", "item1name", "one");
    file.MoveListItem("S", "item", "name", 1, 0);
    EXPECT_EQ(file.GetString("S", "item0name"), "one");
    EXPECT_EQ(file.GetString("S", "item1name", "(none)"), "(none)");
    file.MoveListItem("S", "item", "name", 5, 0);
    EXPECT_EQ(file.GetString("S", "item0name", "(none)"), "");
}

}  // namespace
